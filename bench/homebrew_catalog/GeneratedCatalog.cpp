#include "GeneratedCatalog.h"

#include <array>
#include <random>
#include <string>

#include <nlohmann/json.hpp>

namespace quillbay::bench {

namespace {

constexpr std::array<const char*, 48> words {
    "library",   "tool",      "command-line", "fast",      "portable",    "implementation",
    "of",        "the",       "for",          "and",       "with",        "support",
    "protocol",  "server",    "client",       "parser",    "modern",      "cross-platform",
    "utility",   "framework", "toolkit",      "compiler",  "image",       "video",
    "audio",     "network",   "secure",       "interface", "terminal",    "editor",
    "manager",   "database",  "language",     "runtime",   "binding",     "generator",
    "converter", "monitor",   "viewer",       "simple",    "open-source", "Python",
    "Rust",      "Go",        "JSON",         "HTTP",      "GNU",         "app"};

constexpr std::array<const char*, 24> stems {"lib", "py",    "go",    "node",  "rust", "git",  "open",  "x",
                                             "gnu", "z",     "ffm",   "im",    "qt",   "gtk",  "cairo", "pg",
                                             "my",  "redis", "nginx", "cloud", "font", "java", "swift", "kube"};

std::string description(std::mt19937& random)
{
    std::uniform_int_distribution<int> length(20, 80);
    std::uniform_int_distribution<size_t> pick(0, words.size() - 1);
    const int target = length(random);
    std::string text;
    while (static_cast<int>(text.size()) < target) {
        if (!text.empty())
            text += ' ';
        text += words[pick(random)];
    }
    text[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(text[0])));
    return text;
}

} // namespace

QByteArray generatedSnapshot(HomebrewCatalogKind kind, int packageCount)
{
    std::mt19937 random(kind == HomebrewCatalogKind::formula ? 7 : 11);
    std::uniform_int_distribution<size_t> stem(0, stems.size() - 1);
    std::uniform_int_distribution<size_t> word(0, words.size() - 1);
    std::lognormal_distribution<double> installs(6.0, 2.5);
    std::uniform_int_distribution<int> percent(0, 99);

    nlohmann::ordered_json packages = nlohmann::ordered_json::array();
    for (int i = 0; i < packageCount; ++i) {
        std::string identifier = std::string(stems[stem(random)]) + words[word(random)] + std::to_string(i);
        for (char& c : identifier)
            c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        std::string displayName = identifier;
        if (kind == HomebrewCatalogKind::cask) {
            displayName = std::string(words[word(random)]) + ' ' + words[word(random)] + ' ' + std::to_string(i);
            displayName[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(displayName[0])));
        }
        nlohmann::ordered_json aliases = nlohmann::ordered_json::array();
        if (percent(random) < 12) {
            aliases.push_back(identifier + "@" + std::to_string(percent(random) % 5 + 1));
            if (percent(random) < 40)
                aliases.push_back(std::string(words[word(random)]) + "-" + identifier);
        }
        nlohmann::ordered_json analytics = nlohmann::ordered_json::object();
        if (percent(random) < 85) {
            const auto thirty = static_cast<std::int64_t>(installs(random));
            analytics["thirtyDays"] = thirty;
            analytics["ninetyDays"] = thirty * 3 + percent(random);
            analytics["threeHundredSixtyFiveDays"] = thirty * 12 + percent(random) * 7;
        }
        packages.push_back({{"identifier", identifier},
                            {"displayName", displayName},
                            {"aliases", aliases},
                            {"summary", description(random)},
                            {"version",
                             std::to_string(percent(random) % 9) + "." + std::to_string(percent(random)) + "."
                                 + std::to_string(percent(random) % 20)},
                            {"analytics", analytics},
                            {"isDeprecated", percent(random) < 3},
                            {"isDisabled", percent(random) < 1}});
    }
    const nlohmann::ordered_json snapshot {
        {"schemaVersion", 1}, {"kind", rawValue(kind).toStdString()}, {"packages", packages}};
    return QByteArray::fromStdString(snapshot.dump());
}

} // namespace quillbay::bench

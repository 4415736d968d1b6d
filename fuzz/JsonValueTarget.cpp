#include "FuzzInput.h"
#include "FuzzTargets.h"
#include "homebrew_catalog/HomebrewJSONValue.h"
#include "homebrew_catalog/JsonFields.h"

namespace quillbay::fuzz {

void jsonValue(const std::uint8_t* data, std::size_t size)
{
    auto parsed = json::parse(bytesOf(data, size));
    if (!parsed)
        return;
    const auto value = HomebrewJSONValue::decode(parsed.value());
    if (!value)
        return;
    (void)value.value().displayStrings();
    (void)value.value().dependencyTokens();
    // The text form is what the package page keeps; read back it is the same value.
    const QByteArray text = value.value().encoded();
    auto reparsed = json::parse(text);
    if (!reparsed)
        __builtin_trap();
    const auto again = HomebrewJSONValue::decode(reparsed.value());
    if (!again || !(again.value() == value.value()))
        __builtin_trap();
}

} // namespace quillbay::fuzz

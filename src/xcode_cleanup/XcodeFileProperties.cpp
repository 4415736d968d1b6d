#include "xcode_cleanup/XcodeFileProperties.h"

#include "xcode_cleanup/FileMeasure.h"

namespace quillbay {

qint64 XcodeFileProperties::selectedSize() const
{
    qint64 sum = 0;
    if (children) {
        for (const XcodeFileProperties& child : *children)
            sum = checkedByteSum(sum, child.selectedSize());
    }
    if (!isSelected || paths.isEmpty())
        return sum;
    return checkedByteSum(sum, size.bytesOrZero());
}

bool XcodeFileProperties::hasSelection() const
{
    if (isSelected)
        return true;
    if (!children)
        return false;
    for (const XcodeFileProperties& child : *children) {
        if (child.hasSelection())
            return true;
    }
    return false;
}

std::optional<bool> XcodeFileProperties::selection(const QUuid& target) const
{
    if (id == target)
        return isSelected;
    if (children) {
        for (const XcodeFileProperties& child : *children) {
            if (const auto answer = child.selection(target))
                return answer;
        }
    }
    return std::nullopt;
}

bool XcodeFileProperties::setSelected(const QUuid& target, bool value)
{
    if (id == target) {
        isSelected = value;
        if (children) {
            for (XcodeFileProperties& child : *children) {
                child.isSelected = value;
                child.setSelected(child.id, value);
            }
        }
        return true;
    }
    if (!children)
        return false;
    bool found = false;
    for (XcodeFileProperties& child : *children) {
        if (child.setSelected(target, value)) {
            found = true;
            break;
        }
    }
    if (!found)
        return false;
    bool all = true;
    for (const XcodeFileProperties& child : *children)
        all = all && child.isSelected;
    isSelected = all;
    return true;
}

Size XcodeFileProperties::resolvedSize(std::stop_token stop)
{
    if (size.isKnown())
        return size;
    return calculateSize(std::move(stop));
}

Size XcodeFileProperties::calculateSize(std::stop_token stop)
{
    calculateSizes(std::span(this, 1), std::move(stop));
    return size;
}

namespace {

// Children before their parent's own paths, in the order the sums below read them back.
void gatherPaths(const XcodeFileProperties& node, bool keepKnown, QStringList& paths)
{
    if (keepKnown && node.size.isKnown())
        return;
    if (node.children) {
        for (const XcodeFileProperties& child : *node.children)
            gatherPaths(child, keepKnown, paths);
    }
    paths.append(node.paths);
}

qint64 assignSizes(XcodeFileProperties& node,
                   bool keepKnown,
                   const QStringList& paths,
                   const std::vector<std::optional<qint64>>& measured,
                   qsizetype& next)
{
    if (keepKnown && node.size.isKnown())
        return node.size.bytesOrZero();
    qint64 sum = 0;
    if (node.children) {
        for (XcodeFileProperties& child : *node.children)
            sum = checkedByteSum(sum, assignSizes(child, keepKnown, paths, measured, next));
    }
    for (qsizetype i = 0; i < node.paths.size(); ++i, ++next) {
        std::optional<qint64> bytes = measured[size_t(next)];
        if (!bytes)
            bytes = measureSingleItem(paths.at(next));
        sum = checkedByteSum(sum, bytes.value_or(0));
    }
    node.size = Size::value(sum);
    return sum;
}

} // namespace

void calculateSizes(std::span<XcodeFileProperties> nodes, std::stop_token stop, bool keepKnownSizes)
{
    // One walk for every folder of every subtree: a location holds many small folders,
    // and walking them one by one pays each one's start-up and lets its tail idle the
    // other threads.
    QStringList paths;
    for (const XcodeFileProperties& node : nodes)
        gatherPaths(node, keepKnownSizes, paths);
    const std::vector<std::optional<qint64>> measured = measureDirectories(paths, std::move(stop));
    qsizetype next = 0;
    for (XcodeFileProperties& node : nodes)
        assignSizes(node, keepKnownSizes, paths, measured, next);
}

} // namespace quillbay

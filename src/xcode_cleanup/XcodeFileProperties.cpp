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
    qint64 sum = 0;
    if (children) {
        for (XcodeFileProperties& child : *children) {
            const Size childSize = child.calculateSize(stop);
            sum = checkedByteSum(sum, childSize.bytesOrZero());
        }
    }
    for (const QString& path : std::as_const(paths)) {
        std::optional<qint64> bytes = measureDirectory(path, stop);
        if (!bytes)
            bytes = measureSingleItem(path);
        sum = checkedByteSum(sum, bytes.value_or(0));
    }
    size = Size::value(sum);
    return size;
}

} // namespace quillbay

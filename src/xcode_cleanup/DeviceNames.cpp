#include "xcode_cleanup/DeviceNames.h"

#include <QHash>

namespace quillbay {

namespace {

struct DeviceNameRow
{
    const char* name;
    std::initializer_list<const char*> identifiers;
};

// Marketing names by model identifier. Extend it by the same rule when devices appear;
// an identifier missing here is shown as it stands.
const DeviceNameRow deviceNameRows[] = {
    {"iPod touch", {"iPod1,1"}},
    {"iPod touch (2nd generation)", {"iPod2,1"}},
    {"iPod touch (3rd generation)", {"iPod3,1"}},
    {"iPod touch (4th generation)", {"iPod4,1"}},
    {"iPod touch (5th generation)", {"iPod5,1"}},
    {"iPod touch (6th generation)", {"iPod7,1"}},
    {"iPod touch (7th generation)", {"iPod9,1"}},
    {"iPhone", {"iPhone1,1"}},
    {"iPhone 3G", {"iPhone1,2"}},
    {"iPhone 3GS", {"iPhone2,1"}},
    {"iPhone 4", {"iPhone3,1", "iPhone3,2", "iPhone3,3"}},
    {"iPhone 4s", {"iPhone4,1"}},
    {"iPhone 5", {"iPhone5,1", "iPhone5,2"}},
    {"iPhone 5c", {"iPhone5,3", "iPhone5,4"}},
    {"iPhone 5s", {"iPhone6,1", "iPhone6,2"}},
    {"iPhone 6", {"iPhone7,2"}},
    {"iPhone 6 Plus", {"iPhone7,1"}},
    {"iPhone 6s", {"iPhone8,1"}},
    {"iPhone 6s Plus", {"iPhone8,2"}},
    {"iPhone 7", {"iPhone9,1", "iPhone9,3"}},
    {"iPhone 7 Plus", {"iPhone9,2", "iPhone9,4"}},
    {"iPhone 8", {"iPhone10,1", "iPhone10,4"}},
    {"iPhone 8 Plus", {"iPhone10,2", "iPhone10,5"}},
    {"iPhone X", {"iPhone10,3", "iPhone10,6"}},
    {"iPhone XS", {"iPhone11,2"}},
    {"iPhone XS Max", {"iPhone11,4", "iPhone11,6"}},
    {"iPhone XR", {"iPhone11,8"}},
    {"iPhone 11", {"iPhone12,1"}},
    {"iPhone 11 Pro", {"iPhone12,3"}},
    {"iPhone 11 Pro Max", {"iPhone12,5"}},
    {"iPhone 12 mini", {"iPhone13,1"}},
    {"iPhone 12", {"iPhone13,2"}},
    {"iPhone 12 Pro", {"iPhone13,3"}},
    {"iPhone 12 Pro Max", {"iPhone13,4"}},
    {"iPhone 13 mini", {"iPhone14,4"}},
    {"iPhone 13", {"iPhone14,5"}},
    {"iPhone 13 Pro", {"iPhone14,2"}},
    {"iPhone 13 Pro Max", {"iPhone14,3"}},
    {"iPhone 14", {"iPhone14,7"}},
    {"iPhone 14 Plus", {"iPhone14,8"}},
    {"iPhone 14 Pro", {"iPhone15,2"}},
    {"iPhone 14 Pro Max", {"iPhone15,3"}},
    {"iPhone 15", {"iPhone15,4"}},
    {"iPhone 15 Plus", {"iPhone15,5"}},
    {"iPhone 15 Pro", {"iPhone16,1"}},
    {"iPhone 15 Pro Max", {"iPhone16,2"}},
    {"iPhone 16 Pro", {"iPhone17,1"}},
    {"iPhone 16 Pro Max", {"iPhone17,2"}},
    {"iPhone 16", {"iPhone17,3"}},
    {"iPhone 16 Plus", {"iPhone17,4"}},
    {"iPhone 16e", {"iPhone17,5"}},
    {"iPhone 17 Pro", {"iPhone18,1"}},
    {"iPhone 17 Pro Max", {"iPhone18,2"}},
    {"iPhone 17", {"iPhone18,3"}},
    {"iPhone Air", {"iPhone18,4"}},
    {"iPhone SE", {"iPhone8,4"}},
    {"iPhone SE (2nd generation)", {"iPhone12,8"}},
    {"iPhone SE (3rd generation)", {"iPhone14,6"}},
    {"iPad", {"iPad1,1"}},
    {"iPad 2", {"iPad2,1", "iPad2,2", "iPad2,3", "iPad2,4"}},
    {"iPad (3rd generation)", {"iPad3,1", "iPad3,2", "iPad3,3"}},
    {"iPad (4th generation)", {"iPad3,4", "iPad3,5", "iPad3,6"}},
    {"iPad (5th generation)", {"iPad6,11", "iPad6,12"}},
    {"iPad (6th generation)", {"iPad7,5", "iPad7,6"}},
    {"iPad (7th generation)", {"iPad7,11", "iPad7,12"}},
    {"iPad (8th generation)", {"iPad11,6", "iPad11,7"}},
    {"iPad (9th generation)", {"iPad12,1", "iPad12,2"}},
    {"iPad (10th generation)", {"iPad13,18", "iPad13,19"}},
    {"iPad (11th generation)", {"iPad15,7", "iPad15,8"}},
    {"iPad Air", {"iPad4,1", "iPad4,2", "iPad4,3"}},
    {"iPad Air 2", {"iPad5,3", "iPad5,4"}},
    {"iPad Air (3rd generation)", {"iPad11,3", "iPad11,4"}},
    {"iPad Air (4th generation)", {"iPad13,1", "iPad13,2"}},
    {"iPad Air (5th generation)", {"iPad13,16", "iPad13,17"}},
    {"iPad Air (6th generation, 11-inch)", {"iPad14,8", "iPad14,9"}},
    {"iPad Air (6th generation, 13-inch)", {"iPad14,10", "iPad14,11"}},
    {"iPad Air (7th generation, 11-inch)", {"iPad15,3", "iPad15,4"}},
    {"iPad Air (7th generation, 13-inch)", {"iPad15,5", "iPad15,6"}},
    {"iPad mini", {"iPad2,5", "iPad2,6", "iPad2,7"}},
    {"iPad mini 2", {"iPad4,4", "iPad4,5", "iPad4,6"}},
    {"iPad mini 3", {"iPad4,7", "iPad4,8", "iPad4,9"}},
    {"iPad mini 4", {"iPad5,1", "iPad5,2"}},
    {"iPad mini (5th generation)", {"iPad11,1", "iPad11,2"}},
    {"iPad mini (6th generation)", {"iPad14,1", "iPad14,2"}},
    {"iPad Pro (9.7-inch)", {"iPad6,3", "iPad6,4"}},
    {"iPad Pro (10.5-inch)", {"iPad7,3", "iPad7,4"}},
    {"iPad Pro (11-inch) (1st generation)", {"iPad8,1", "iPad8,2", "iPad8,3", "iPad8,4"}},
    {"iPad Pro (11-inch) (2nd generation)", {"iPad8,9", "iPad8,10"}},
    {"iPad Pro (11-inch) (3rd generation)", {"iPad13,4", "iPad13,5", "iPad13,6", "iPad13,7"}},
    {"iPad Pro (11-inch) (4th generation)", {"iPad14,3", "iPad14,4"}},
    {"iPad Pro (12.9-inch) (1st generation)", {"iPad6,7", "iPad6,8"}},
    {"iPad Pro (12.9-inch) (2nd generation)", {"iPad7,1", "iPad7,2"}},
    {"iPad Pro (12.9-inch) (3rd generation)", {"iPad8,5", "iPad8,6", "iPad8,7", "iPad8,8"}},
    {"iPad Pro (12.9-inch) (4th generation)", {"iPad8,11", "iPad8,12"}},
    {"iPad Pro (12.9-inch) (5th generation)", {"iPad13,8", "iPad13,9", "iPad13,10", "iPad13,11"}},
    {"iPad Pro (12.9-inch) (6th generation)", {"iPad14,5", "iPad14,6"}},
    {"iPad Pro (11-inch) (M4)", {"iPad16,3", "iPad16,4"}},
    {"iPad Pro (13-inch) (M4)", {"iPad16,5", "iPad16,6"}},
    {"iPad Pro (11-inch) (M5)", {"iPad17,1", "iPad17,2"}},
    {"iPad Pro (13-inch) (M5)", {"iPad17,3", "iPad17,4"}},
    {"Apple Watch (1st generation)", {"Watch1,1", "Watch1,2"}},
    {"Apple Watch Series 1", {"Watch2,6", "Watch2,7"}},
    {"Apple Watch Series 2", {"Watch2,3", "Watch2,4"}},
    {"Apple Watch Series 3", {"Watch3,1", "Watch3,2", "Watch3,3", "Watch3,4"}},
    {"Apple Watch Series 4", {"Watch4,1", "Watch4,2", "Watch4,3", "Watch4,4"}},
    {"Apple Watch Series 5", {"Watch5,1", "Watch5,2", "Watch5,3", "Watch5,4"}},
    {"Apple Watch SE", {"Watch5,9", "Watch5,10", "Watch5,11", "Watch5,12"}},
    {"Apple Watch Series 6", {"Watch6,1", "Watch6,2", "Watch6,3", "Watch6,4"}},
    {"Apple Watch Series 7", {"Watch6,6", "Watch6,7", "Watch6,8", "Watch6,9"}},
    {"Apple Watch SE 2", {"Watch6,10", "Watch6,11", "Watch6,12", "Watch6,13"}},
    {"Apple Watch Series 8", {"Watch6,14", "Watch6,15", "Watch6,16", "Watch6,17"}},
    {"Apple Watch Ultra", {"Watch6,18"}},
    {"Apple Watch Series 9", {"Watch7,1", "Watch7,2", "Watch7,3", "Watch7,4"}},
    {"Apple Watch Ultra 2", {"Watch7,5"}},
    {"Apple Watch Series 10", {"Watch7,8", "Watch7,9"}},
    {"Apple Watch Ultra 3", {"Watch7,12"}},
    {"Apple Watch SE 3", {"Watch7,13", "Watch7,14", "Watch7,15", "Watch7,16"}},
    {"Apple Watch Series 11", {"Watch7,17", "Watch7,18", "Watch7,19", "Watch7,20"}},
    {"Apple TV", {"AppleTV5,3"}},
    {"Apple TV 4K", {"AppleTV6,2"}},
    {"Apple TV 4K (2nd generation)", {"AppleTV11,1"}},
    {"Apple TV 4K (3rd generation)", {"AppleTV14,1"}},
    {"HomePod", {"AudioAccessory1,1"}},
    {"HomePod mini", {"AudioAccessory5,1"}},
    {"Apple Vision Pro", {"RealityDevice14,1"}},
    {"Apple Vision Pro (M5)", {"RealityDevice17,1"}},
};

const QHash<QString, QString>& deviceNameTable()
{
    static const QHash<QString, QString> table = [] {
        QHash<QString, QString> result;
        for (const DeviceNameRow& row : deviceNameRows) {
            for (const char* identifier : row.identifiers)
                result.insert(QString::fromLatin1(identifier), QString::fromLatin1(row.name));
        }
        return result;
    }();
    return table;
}

} // namespace

QString deviceName(const QString& identifier)
{
    return deviceNameTable().value(identifier, identifier);
}

int deviceNameTableSize()
{
    return static_cast<int>(deviceNameTable().size());
}

} // namespace quillbay

#import <AppKit/AppKit.h>

#include "platform/Appearance.h"

namespace quillbay {

QPalette applicationAppearancePalette(ApplicationAppearance)
{
    // AppKit draws from the appearance, and the toolkit follows it.
    return QPalette();
}

void setApplicationAppearance(ApplicationAppearance appearance)
{
    switch (appearance) {
    case ApplicationAppearance::system:
        NSApp.appearance = nil;
        break;
    case ApplicationAppearance::light:
        NSApp.appearance = [NSAppearance appearanceNamed:NSAppearanceNameAqua];
        break;
    case ApplicationAppearance::dark:
        NSApp.appearance = [NSAppearance appearanceNamed:NSAppearanceNameDarkAqua];
        break;
    }
}

} // namespace quillbay

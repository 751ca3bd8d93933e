#pragma once

#include <QString>
#include <functional>

// The slide commands as a menu descriptor, for the strip's right-click menu and
// the menu bar's Slide menu alike: the same items, numbered as the strip
// numbers them plus offset (0 for the strip, 10 for the Slide menu). An item
// that offered() refuses is shown disabled.
class SlideMenuDescriptor {
public:
    static QString build(int offset, const std::function<bool(int number)>& offered,
                         bool separatorBeforeDelete);
};

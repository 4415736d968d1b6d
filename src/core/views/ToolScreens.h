#pragma once

#include <QWidget>

#include "core/views/SidebarItem.h"

namespace quillbay {

class QuillbayApp;

// Builds the detail screen of one tool from the application's stores. The one place that
// knows which screen belongs to which sidebar item.
QWidget* createToolScreen(Tool tool, QuillbayApp& app, QWidget* parent);

} // namespace quillbay

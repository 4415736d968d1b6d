#pragma once

#include <QIcon>
#include <QToolButton>
#include <functional>

namespace quillbay {

// Maps a symbol name to an icon; the shell passes its symbol table, tests may pass none.
using SymbolIconProvider = std::function<QIcon(const QString& symbolName)>;

// A sidebar footer control: symbol and label on one row that highlights under the
// pointer. With a menu it opens the menu on press. The highlight has no animation, so
// reduced motion needs nothing further.
class SidebarHoverButton : public QToolButton
{
    Q_OBJECT

public:
    SidebarHoverButton(const QString& title, const QIcon& icon, QWidget* parent = nullptr);
};

} // namespace quillbay

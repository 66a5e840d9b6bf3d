#include "shell/desktop/about_box.h"

#include "core/foundation/program.h"
#include "shell/desktop/qt_text.h"

#include <QMessageBox>

namespace loadwarden {

void showAboutBox(QWidget* parent) {
    QMessageBox::about(parent, QStringLiteral("About Loadwarden"),
                       QStringLiteral("<h3>Loadwarden %1</h3>"
                                      "<p>See what the computer is doing and why it is slow.</p>"
                                      "<p>The command line is <tt>loadwarden</tt>; "
                                      "<tt>loadwarden --help</tt> lists its commands.</p>")
                           .arg(qtText(programVersion)));
}

} // namespace loadwarden

#include "app/control/reopening.h"

#include <QProcess>
#include <QStringList>

namespace loadwarden {

bool reopen(const Reopening& reopening) {
    QStringList arguments;
    for (const std::string& argument : reopening.arguments) {
        arguments << QString::fromStdString(argument);
    }
    return QProcess::startDetached(QString::fromStdString(reopening.program), arguments,
                                   QString::fromStdString(reopening.folder));
}

} // namespace loadwarden

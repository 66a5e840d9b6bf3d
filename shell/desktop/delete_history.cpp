#include "shell/desktop/delete_history.h"

#include <QMessageBox>
#include <QPushButton>

namespace loadwarden {

void confirmDeleteHistory(AppModel& model, QWidget* parent) {
    QMessageBox confirm(QMessageBox::Warning, QStringLiteral("Delete all usage history?"),
                        QStringLiteral("Delete all usage history?"), QMessageBox::Cancel, parent);
    QPushButton* remove =
        confirm.addButton(QStringLiteral("Delete History"), QMessageBox::DestructiveRole);
    confirm.setDefaultButton(QMessageBox::Cancel);
    confirm.exec();
    if (confirm.clickedButton() == remove) {
        model.deleteHistory();
    }
}

} // namespace loadwarden

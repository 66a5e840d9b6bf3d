#include "shell/desktop/column_chooser.h"

#include <QAbstractItemModel>
#include <QHeaderView>
#include <QMenu>

namespace loadwarden {

void offerColumnChoice(QHeaderView& header) {
    header.setSectionsMovable(true);
    header.setFirstSectionMovable(false);
    header.setContextMenuPolicy(Qt::CustomContextMenu);
    QObject::connect(&header, &QHeaderView::customContextMenuRequested, &header,
                     [&header](const QPoint& position) {
                         QMenu menu(&header);
                         fillColumnMenu(menu, header);
                         menu.exec(header.viewport()->mapToGlobal(position));
                     });
}

void fillColumnMenu(QMenu& menu, QHeaderView& header) {
    for (int visual = 0; visual < header.count(); ++visual) {
        const int column = header.logicalIndex(visual);
        const QString title = header.model()->headerData(column, Qt::Horizontal).toString();
        QAction* shown = menu.addAction(title);
        shown->setCheckable(true);
        shown->setChecked(!header.isSectionHidden(column));
        shown->setEnabled(column != 0);
        QObject::connect(shown, &QAction::toggled, &header,
                         [&header, column](bool show) { header.setSectionHidden(column, !show); });
    }
}

} // namespace loadwarden

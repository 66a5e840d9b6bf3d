#pragma once

class QHeaderView;
class QMenu;

namespace loadwarden {

// Lets people choose a table's columns: a right-click on its header offers
// each column to show or hide, and the columns can be dragged into another
// order. The first column names the row, so it stays first and shown.
void offerColumnChoice(QHeaderView& header);

// One checkable line per column, in the order they are shown; the same
// lines the header's own menu offers, for the View menu.
void fillColumnMenu(QMenu& menu, QHeaderView& header);

} // namespace loadwarden

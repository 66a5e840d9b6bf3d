#pragma once

#include <QWidget>

namespace loadwarden {

// A tab that redraws only while it can be seen: a change that comes while
// it is hidden is caught up with when it is shown.
class TabPage : public QWidget {
public:
    using QWidget::QWidget;

protected:
    virtual void refresh() = 0;

    // Refreshes now when on screen, else at the next showing.
    void refreshWhenSeen() {
        if (isVisible()) {
            refresh();
        } else {
            stale_ = true;
        }
    }

    void showEvent(QShowEvent* event) override {
        QWidget::showEvent(event);
        if (stale_) {
            stale_ = false;
            refresh();
        }
    }

private:
    bool stale_ = false;
};

} // namespace loadwarden

#pragma once

#include "core/model/performance_panels.h"

#include <QPixmap>
#include <QPolygonF>
#include <QStaticText>
#include <QWidget>
#include <optional>
#include <vector>

namespace loadwarden {

// One series as a line over the last minute, under its title and current
// figure, with its scale at the top and middle lines. Pointing at the line,
// or moving along it with the arrow keys, reads out a value and how long
// ago it was read. Built for a refresh every tick: the frame, grid and title
// are kept in a picture redrawn only when the size or palette changes, and
// the line reuses one buffer, so a repaint draws the line and figure alone.
class GraphView : public QWidget {
    Q_OBJECT

public:
    static constexpr int margin = 6; // around the plot, and before the title

    explicit GraphView(QWidget* parent = nullptr);

    void setPanel(const GraphPanel& panel);

    QString figureText() const { return figureText_; }
    bool drawsLine() const { return !panel_.values.empty(); }
    QString scaleText() const { return topScale_.text() + " / " + middleScale_.text(); }
    // What the pointer reads out; empty when it points at nothing.
    QString readout() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void setTitle(const QString& title);
    void setFigure(const QString& figure);
    void setScale();
    // The slot under the pointer, from the left; absent when it is off the plot.
    void pointAt(std::optional<int> slot);
    std::optional<std::size_t> pointedIndex() const;
    void followReadout();
    // After a change of size, font or title: where the plot and title lie, and a stale
    // background.
    void relayout();
    void paintBackground();
    void paintLine(QPainter& painter);
    void paintScale(QPainter& painter);
    void paintReadout(QPainter& painter, std::size_t index);
    QPointF pointOf(std::size_t index) const;

    GraphPanel panel_;
    QString title_;
    QString figureText_;
    QStaticText figure_;
    QStaticText topScale_;
    QStaticText middleScale_;
    std::optional<int> pointed_;

    QRectF plot_;
    qreal titleRight_ = 0.0;
    QPixmap background_; // empty when it must be drawn again
    QPolygonF line_;     // the line and, past it, the two corners that close its fill
};

} // namespace loadwarden

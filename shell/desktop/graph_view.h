#pragma once

#include "core/model/performance_panels.h"

#include <QPixmap>
#include <QPolygonF>
#include <QStaticText>
#include <QWidget>
#include <vector>

namespace loadwarden {

// One series as a line over the last minute, under its title and current
// figure. Built for a refresh every tick: the frame, grid and title are kept
// in a picture redrawn only when the size or palette changes, and the line
// reuses one buffer, so a repaint draws the line and figure alone.
class GraphView : public QWidget {
    Q_OBJECT

public:
    static constexpr int margin = 6; // around the plot, and before the title

    explicit GraphView(QWidget* parent = nullptr);

    void setPanel(const GraphPanel& panel);

    QString figureText() const { return figureText_; }
    bool drawsLine() const { return !values_.empty(); }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void setTitle(const QString& title);
    void setFigure(const QString& figure);
    void setTopLabel(const QString& label);
    // After a change of size, font or title: where the plot and title lie, and a stale
    // background.
    void relayout();
    void paintBackground();
    void paintLine(QPainter& painter);

    QString title_;
    QString figureText_;
    QStaticText figure_;
    QStaticText topLabel_;
    std::vector<double> values_;
    std::size_t capacity_ = Series::graphCapacity;
    double top_ = 1.0;

    QRectF plot_;
    qreal titleRight_ = 0.0;
    QPixmap background_; // empty when it must be drawn again
    QPolygonF line_;     // the line and, past it, the two corners that close its fill
};

} // namespace loadwarden

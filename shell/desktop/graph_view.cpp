#include "shell/desktop/graph_view.h"

#include "core/text/units_format.h"
#include "shell/desktop/qt_text.h"

#include <QEvent>
#include <QPainter>
#include <algorithm>

namespace loadwarden {

namespace {

constexpr qreal titleGap = 12.0;
constexpr int gridColumns = 6; // ten readings each at full capacity
constexpr int gridRows = 4;
const QString dash = qtText(noFigure);

// A shade between two palette colours, so that grid, frame and fill suit light and dark
// palettes alike.
QColor blend(const QColor& from, const QColor& to, qreal amount) {
    const auto channel = [amount](int start, int end) {
        return qRound(start + (end - start) * amount);
    };
    return QColor(channel(from.red(), to.red()), channel(from.green(), to.green()),
                  channel(from.blue(), to.blue()));
}

QFont titleFont(QFont font) {
    font.setBold(true);
    return font;
}

} // namespace

GraphView::GraphView(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent); // the background picture covers every pixel
    setFocusPolicy(Qt::TabFocus);
    figure_.setTextFormat(Qt::PlainText);
    topLabel_.setTextFormat(Qt::PlainText);
    line_.reserve(static_cast<qsizetype>(capacity_) + 2);
    setFigure(dash);
}

void GraphView::setPanel(const GraphPanel& panel) {
    setTitle(QString::fromStdString(panel.title));
    setFigure(panel.figure ? QString::fromStdString(*panel.figure) : dash);
    setTopLabel(QString::fromStdString(panel.topLabel));
    values_.assign(panel.values.begin(), panel.values.end());
    const std::size_t capacity = std::max<std::size_t>(panel.capacity, 1);
    if (capacity != capacity_) {
        capacity_ = capacity;
        line_.reserve(static_cast<qsizetype>(capacity_) + 2);
    }
    top_ = panel.top > 0.0 ? panel.top : 1.0;
    update();
}

void GraphView::setTitle(const QString& title) {
    if (title == title_) {
        return;
    }
    title_ = title;
    setAccessibleName(title);
    relayout();
}

void GraphView::setFigure(const QString& figure) {
    if (figure == figureText_) {
        return;
    }
    figureText_ = figure;
    figure_.setText(figure);
    figure_.prepare(QTransform(), font());
    setAccessibleDescription(figure == dash ? QStringLiteral("Not available") : figure);
}

void GraphView::setTopLabel(const QString& label) {
    if (label == topLabel_.text()) {
        return;
    }
    topLabel_.setText(label);
    topLabel_.prepare(QTransform(), font());
}

QSize GraphView::sizeHint() const {
    return {320, 120};
}

QSize GraphView::minimumSizeHint() const {
    return {96, 56};
}

void GraphView::relayout() {
    const qreal header = fontMetrics().height() + margin;
    plot_ = QRectF(margin, header, width() - 2 * margin, height() - header - margin);
    titleRight_ = margin + QFontMetricsF(titleFont(font())).horizontalAdvance(title_);
    figure_.prepare(QTransform(), font());
    topLabel_.prepare(QTransform(), font());
    background_ = QPixmap();
}

void GraphView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    relayout();
}

void GraphView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        relayout();
        update();
    } else if (event->type() == QEvent::PaletteChange) {
        background_ = QPixmap();
        update();
    }
}

void GraphView::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    update();
}

void GraphView::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    update();
}

void GraphView::paintBackground() {
    const qreal ratio = devicePixelRatioF();
    background_ = QPixmap((QSizeF(size()) * ratio).toSize());
    background_.setDevicePixelRatio(ratio);
    const QPalette& colours = palette();
    background_.fill(colours.color(QPalette::Window));

    QPainter painter(&background_);
    painter.fillRect(plot_, colours.color(QPalette::Base));
    const QColor ink = colours.color(QPalette::Text);
    painter.setPen(QPen(blend(colours.color(QPalette::Base), ink, 0.1), 0));
    for (int row = 1; row < gridRows; ++row) {
        const qreal y = plot_.top() + plot_.height() * row / gridRows;
        painter.drawLine(QPointF(plot_.left(), y), QPointF(plot_.right(), y));
    }
    for (int column = 1; column < gridColumns; ++column) {
        const qreal x = plot_.left() + plot_.width() * column / gridColumns;
        painter.drawLine(QPointF(x, plot_.top()), QPointF(x, plot_.bottom()));
    }
    painter.setPen(QPen(blend(colours.color(QPalette::Base), ink, 0.3), 0));
    painter.drawRect(plot_.adjusted(0.5, 0.5, -0.5, -0.5));

    painter.setPen(colours.color(QPalette::WindowText));
    painter.setFont(titleFont(font()));
    painter.drawText(QRectF(margin, 0, width() - 2 * margin, plot_.top()),
                     Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, title_);
}

void GraphView::paintEvent(QPaintEvent*) {
    if (background_.isNull() || background_.devicePixelRatio() != devicePixelRatioF()) {
        paintBackground();
    }
    QPainter painter(this);
    painter.drawPixmap(0, 0, background_);

    const QPalette& colours = palette();
    const qreal textTop = (plot_.top() - figure_.size().height()) / 2;
    // Right-aligned, but never over the title: a figure too long runs off the edge instead.
    const qreal figureLeft =
        std::max(width() - margin - figure_.size().width(), titleRight_ + titleGap);
    painter.setPen(
        colours.color(figureText_ == dash ? QPalette::PlaceholderText : QPalette::WindowText));
    painter.drawStaticText(QPointF(figureLeft, textTop), figure_);

    if (!values_.empty()) {
        paintLine(painter);
    }
    if (!topLabel_.text().isEmpty()) {
        // Over the line, on a backing of the plot's colour so that it stays legible.
        const QPointF corner(plot_.left() + 2, plot_.top() + 2);
        QColor backing = colours.color(QPalette::Base);
        backing.setAlphaF(0.75);
        painter.fillRect(QRectF(corner, topLabel_.size()).adjusted(0, 0, 4, 0), backing);
        painter.setPen(colours.color(QPalette::PlaceholderText));
        painter.drawStaticText(corner + QPointF(2, 0), topLabel_);
    }
    if (hasFocus()) {
        painter.setPen(QPen(colours.color(QPalette::Highlight), 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(QRectF(rect()).adjusted(1, 1, -1, -1));
    }
}

// The newest reading at the right edge, older ones leftwards, one slot each.
void GraphView::paintLine(QPainter& painter) {
    const std::size_t count = std::min(values_.size(), capacity_);
    const QRectF area = plot_.adjusted(1, 1, -1, -1);
    const qreal step = capacity_ > 1 ? area.width() / static_cast<qreal>(capacity_ - 1) : 0.0;
    const std::size_t firstSlot = capacity_ - count;
    line_.resize(static_cast<qsizetype>(count) + 2);
    QPointF* points = line_.data();
    for (std::size_t index = 0; index < count; ++index) {
        const double value = values_[values_.size() - count + index];
        const qreal height = std::clamp(value / top_, 0.0, 1.0) * area.height();
        points[index] = QPointF(area.left() + static_cast<qreal>(firstSlot + index) * step,
                                area.bottom() - height);
    }
    points[count] = QPointF(points[count - 1].x(), area.bottom());
    points[count + 1] = QPointF(points[0].x(), area.bottom());

    // The fill is opaque and aliased, the line over it hides its edge: a
    // translucent or antialiased fill costs Qt's raster engine several times as much.
    const QColor highlight = palette().color(QPalette::Highlight);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(Qt::NoPen);
    painter.setBrush(blend(palette().color(QPalette::Base), highlight, 0.25));
    painter.drawPolygon(points, static_cast<int>(count) + 2);
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setPen(QPen(highlight, 1));
    painter.drawPolyline(points, static_cast<int>(count));
    // The newest reading stands out, and a single one is visible at all.
    painter.setPen(Qt::NoPen);
    painter.setBrush(highlight);
    painter.drawEllipse(points[count - 1], 2.0, 2.0);
}

} // namespace loadwarden

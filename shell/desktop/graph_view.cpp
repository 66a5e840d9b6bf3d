#include "shell/desktop/graph_view.h"

#include "core/text/units_format.h"
#include "shell/desktop/qt_text.h"

#include <QAccessibleWidget>
#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
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

// Screen readers meet a graph as a chart, named by its title and described
// by its figure.
QAccessibleInterface* graphAccessible(const QString& className, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    if (className != QLatin1String(GraphView::staticMetaObject.className()) || !widget) {
        return nullptr;
    }
    return new QAccessibleWidget(widget, QAccessible::Chart);
}

} // namespace

GraphView::GraphView(QWidget* parent) : QWidget(parent) {
    static const bool accessible = (QAccessible::installFactory(graphAccessible), true);
    Q_UNUSED(accessible);
    setAttribute(Qt::WA_OpaquePaintEvent); // the background picture covers every pixel
    setFocusPolicy(Qt::TabFocus);
    setMouseTracking(true);
    for (QStaticText* text : {&figure_, &topScale_, &middleScale_}) {
        text->setTextFormat(Qt::PlainText);
    }
    line_.reserve(static_cast<qsizetype>(panel_.capacity) + 2);
    setFigure(dash);
    followReadout();
}

void GraphView::setPanel(const GraphPanel& panel) {
    const bool rescaled = panel.top != panel_.top || panel.unit != panel_.unit;
    panel_ = panel;
    panel_.capacity = std::max<std::size_t>(panel_.capacity, 1);
    panel_.top = panel_.top > 0.0 ? panel_.top : 1.0;
    line_.reserve(static_cast<qsizetype>(panel_.capacity) + 2);
    setTitle(QString::fromStdString(panel.title));
    setFigure(panel.figure ? QString::fromStdString(*panel.figure) : dash);
    if (rescaled || topScale_.text().isEmpty()) {
        setScale();
    }
    followReadout();
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
}

void GraphView::setScale() {
    topScale_.setText(qtText(panel_.scaleLabel(1.0)));
    middleScale_.setText(qtText(panel_.scaleLabel(0.5)));
    topScale_.prepare(QTransform(), font());
    middleScale_.prepare(QTransform(), font());
}

std::optional<std::size_t> GraphView::pointedIndex() const {
    const auto count = static_cast<int>(std::min(panel_.values.size(), panel_.capacity));
    const int firstSlot = static_cast<int>(panel_.capacity) - count;
    if (!pointed_ || *pointed_ < firstSlot) {
        return std::nullopt;
    }
    return panel_.values.size() - static_cast<std::size_t>(count) +
           static_cast<std::size_t>(*pointed_ - firstSlot);
}

QString GraphView::readout() const {
    const auto index = pointedIndex();
    return index && panel_.figure ? qtText(panel_.readout(*index)) : QString();
}

// Screen readers hear the figure, or the reading pointed at.
void GraphView::followReadout() {
    const QString reading = readout();
    const QString description = !reading.isEmpty() ? reading
                                : figureText_ == dash ? QStringLiteral("Not available")
                                                      : figureText_;
    if (description != accessibleDescription()) {
        setAccessibleDescription(description);
    }
}

void GraphView::pointAt(std::optional<int> slot) {
    if (slot == pointed_) {
        return;
    }
    pointed_ = slot;
    followReadout();
    update();
}

void GraphView::mouseMoveEvent(QMouseEvent* event) {
    QWidget::mouseMoveEvent(event);
    const QRectF area = plot_.adjusted(1, 1, -1, -1);
    const qreal x = event->position().x();
    if (panel_.capacity < 2 || !plot_.contains(event->position())) {
        pointAt(std::nullopt);
        return;
    }
    const qreal step = area.width() / static_cast<qreal>(panel_.capacity - 1);
    pointAt(std::clamp(qRound((x - area.left()) / step), 0,
                       static_cast<int>(panel_.capacity) - 1));
}

void GraphView::leaveEvent(QEvent* event) {
    QWidget::leaveEvent(event);
    pointAt(std::nullopt);
}

// Left and right walk the readings, from the newest; Escape lets go.
void GraphView::keyPressEvent(QKeyEvent* event) {
    const int last = static_cast<int>(panel_.capacity) - 1;
    switch (event->key()) {
    case Qt::Key_Left:
        pointAt(std::max(pointed_.value_or(last + 1) - 1, 0));
        break;
    case Qt::Key_Right:
        pointAt(std::min(pointed_.value_or(last) + 1, last));
        break;
    case Qt::Key_Escape:
        if (!pointed_) {
            QWidget::keyPressEvent(event);
            return;
        }
        pointAt(std::nullopt);
        break;
    default:
        QWidget::keyPressEvent(event);
    }
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
    for (QStaticText* text : {&figure_, &topScale_, &middleScale_}) {
        text->prepare(QTransform(), font());
    }
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
    if (!underMouse()) {
        pointAt(std::nullopt);
    }
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

    if (!panel_.values.empty()) {
        paintLine(painter);
        paintScale(painter);
        if (const auto index = pointedIndex()) {
            paintReadout(painter, *index);
        }
    }
    if (hasFocus()) {
        painter.setPen(QPen(colours.color(QPalette::Highlight), 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(QRectF(rect()).adjusted(1, 1, -1, -1));
    }
}

// The newest reading at the right edge, older ones leftwards, one slot each.
QPointF GraphView::pointOf(std::size_t index) const {
    const std::size_t count = std::min(panel_.values.size(), panel_.capacity);
    const std::size_t skipped = panel_.values.size() - count;
    const QRectF area = plot_.adjusted(1, 1, -1, -1);
    const qreal step =
        panel_.capacity > 1 ? area.width() / static_cast<qreal>(panel_.capacity - 1) : 0.0;
    const std::size_t slot = panel_.capacity - count + (index - skipped);
    const qreal height = std::clamp(panel_.values[index] / panel_.top, 0.0, 1.0) * area.height();
    return {area.left() + static_cast<qreal>(slot) * step, area.bottom() - height};
}

void GraphView::paintLine(QPainter& painter) {
    const std::size_t count = std::min(panel_.values.size(), panel_.capacity);
    const std::size_t first = panel_.values.size() - count;
    const qreal bottom = plot_.bottom() - 1;
    line_.resize(static_cast<qsizetype>(count) + 2);
    QPointF* points = line_.data();
    for (std::size_t index = 0; index < count; ++index) {
        points[index] = pointOf(first + index);
    }
    points[count] = QPointF(points[count - 1].x(), bottom);
    points[count + 1] = QPointF(points[0].x(), bottom);

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

namespace {

// On a backing of the plot's colour, so that it stays legible over the line.
void paintLabel(QPainter& painter, const QPointF& corner, const QStaticText& text,
                const QColor& backing, const QColor& ink) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(backing);
    painter.drawRect(QRectF(corner, text.size()).adjusted(-2, 0, 2, 0));
    painter.setPen(ink);
    painter.drawStaticText(corner, text);
}

} // namespace

// The top and middle lines' values at the left, where a plot tall enough has room for both.
void GraphView::paintScale(QPainter& painter) {
    const QPalette& colours = palette();
    QColor backing = colours.color(QPalette::Base);
    backing.setAlphaF(0.75);
    const QColor ink = colours.color(QPalette::PlaceholderText);
    const qreal left = plot_.left() + 3;
    painter.setRenderHint(QPainter::Antialiasing, false);
    paintLabel(painter, QPointF(left, plot_.top() + 1), topScale_, backing, ink);
    const qreal middle = plot_.center().y() - middleScale_.size().height() / 2;
    if (middle > plot_.top() + 1 + topScale_.size().height()) {
        paintLabel(painter, QPointF(left, middle), middleScale_, backing, ink);
    }
}

// A guide down through the reading, with its value and age beside it.
void GraphView::paintReadout(QPainter& painter, std::size_t index) {
    const QPalette& colours = palette();
    const QPointF point = pointOf(index);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(QPen(colours.color(QPalette::WindowText), 0, Qt::DashLine));
    painter.drawLine(QPointF(point.x(), plot_.top() + 1), QPointF(point.x(), plot_.bottom() - 1));
    painter.setRenderHint(QPainter::Antialiasing, true);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colours.color(QPalette::WindowText));
    painter.drawEllipse(point, 3.0, 3.0);

    const QString words = readout();
    const QFontMetricsF metrics(font());
    const QSizeF size(metrics.horizontalAdvance(words) + 8, metrics.height() + 2);
    // Beside the guide, on the side with room, below the scale at the top.
    qreal left = point.x() + 6;
    if (left + size.width() > plot_.right() - 1) {
        left = point.x() - 6 - size.width();
    }
    left = std::max(left, plot_.left() + 1);
    const QRectF box(QPointF(left, plot_.top() + 2 + topScale_.size().height()), size);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(QPen(colours.color(QPalette::Mid), 0));
    painter.setBrush(colours.color(QPalette::ToolTipBase));
    painter.drawRect(box);
    painter.setPen(colours.color(QPalette::ToolTipText));
    painter.drawText(box, Qt::AlignCenter | Qt::TextSingleLine, words);
}

} // namespace loadwarden

#include "shell/desktop/why_sheet.h"

#include "core/diagnosis/cause_text.h"
#include "core/text/units_format.h"
#include "shell/desktop/qt_text.h"
#include "shell/desktop/reveal_file.h"

#include <QAccessibleWidget>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QStyle>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace loadwarden {

namespace {

constexpr std::size_t maxCauses = 6;
constexpr std::size_t busiestCount = 5;

// The cards that stand for the same causes can be refreshed in place.
bool sameCauses(const std::vector<Cause>& a, const std::vector<Cause>& b) {
    return std::ranges::equal(a, b, [](const Cause& x, const Cause& y) {
        return x.kind == y.kind && x.appKey == y.appKey && x.fix == y.fix;
    });
}

QStyle::StandardPixmap severity(double score) {
    if (score >= 80) {
        return QStyle::SP_MessageBoxCritical;
    }
    return score >= 50 ? QStyle::SP_MessageBoxWarning : QStyle::SP_MessageBoxInformation;
}

const QString cardName = QStringLiteral("card");

// Screen readers meet a card as a group named by its title.
QAccessibleInterface* cardAccessible(const QString& className, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    if (className != QLatin1String("QFrame") || !widget || widget->objectName() != cardName) {
        return nullptr;
    }
    return new QAccessibleWidget(widget, QAccessible::Grouping);
}

// A framed card, named for screen readers.
QFrame* newCard(const QString& title) {
    static const bool accessible = (QAccessible::installFactory(cardAccessible), true);
    Q_UNUSED(accessible);
    auto* card = new QFrame;
    card->setObjectName(cardName);
    card->setFrameShape(QFrame::StyledPanel);
    card->setAccessibleName(title);
    return card;
}

QLabel* wrappedLabel(const QString& words, QWidget* parent) {
    auto* label = new QLabel(words, parent);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

} // namespace

WhySheet::WhySheet(AppModel& model, ProcessActions& actions, QWidget* parent)
    : QDialog(parent), model_(model), actions_(actions), cards_(new QVBoxLayout),
      busiest_(new QTreeWidget(this)) {
    setWindowTitle(qtText(CauseText::question()));
    resize(560, 620);

    auto* cardArea = new QWidget;
    auto* cardColumn = new QVBoxLayout(cardArea);
    cardColumn->addLayout(cards_);
    cardColumn->addStretch();
    auto* scroll = new QScrollArea(this);
    scroll->setWidget(cardArea);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);

    auto* heading = new QLabel(qtText(CauseText::busiestHeading()), this);
    heading->setStyleSheet(QStringLiteral("font-weight: bold"));
    busiest_->setHeaderLabels(
        {QStringLiteral("Name"), QStringLiteral("CPU"), QStringLiteral("Memory"), QString()});
    busiest_->setRootIsDecorated(false);
    busiest_->setAccessibleName(qtText(CauseText::busiestHeading()));
    busiest_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    busiest_->header()->setStretchLastSection(false);
    busiest_->setMinimumHeight(busiest_->fontMetrics().height() * 9);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(scroll, 3);
    layout->addWidget(heading);
    layout->addWidget(busiest_, 1);
    layout->addWidget(buttons);

    connect(&model_, &AppModel::ticked, this, [this] {
        if (isVisible()) {
            refresh();
        }
    });
}

void WhySheet::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    refresh();
}

void WhySheet::refresh() {
    const SystemPicture picture = model_.picture();
    std::vector<Cause> causes = Explainer::explain(picture, maxCauses);
    readOnlyReasons_ = Diagnosis::readOnlyReasons(model_.groups());
    const bool rebuild = cards_->count() == 0 || !sameCauses(causes_, causes);
    causes_ = std::move(causes);
    if (rebuild) {
        rebuildCards();
    } else {
        for (std::size_t index = 0; index < causes_.size(); ++index) {
            auto* title = cards_->itemAt(static_cast<int>(index))
                              ->widget()
                              ->findChild<QLabel*>(QStringLiteral("title"));
            title->setText(qtText(CauseText::title(causes_[index])));
        }
    }

    busiest_->clear();
    for (const ExplainerApp& app : Diagnosis::busiest(picture.apps, busiestCount)) {
        const auto reason = readOnlyReasons_.find(app.key);
        new QTreeWidgetItem(
            busiest_, {qtText(app.name), qtText(formatPercent(app.cpuPercent)),
                       qtText(formatBytes(app.memoryBytes)),
                       reason == readOnlyReasons_.end() ? QString() : qtText(reason->second)});
    }
}

void WhySheet::rebuildCards() {
    while (QLayoutItem* item = cards_->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    if (causes_.empty()) {
        auto* allClear = newCard(qtText(CauseText::allClearTitle()));
        auto* layout = new QVBoxLayout(allClear);
        auto* title = wrappedLabel(qtText(CauseText::allClearTitle()), allClear);
        title->setStyleSheet(QStringLiteral("font-weight: bold"));
        layout->addWidget(title);
        layout->addWidget(wrappedLabel(qtText(CauseText::allClearSentence()), allClear));
        cards_->addWidget(allClear);
        return;
    }
    for (std::size_t index = 0; index < causes_.size(); ++index) {
        cards_->addWidget(card(index));
    }
}

QWidget* WhySheet::card(std::size_t index) {
    const Cause& cause = causes_[index];
    auto* frame = newCard(qtText(CauseText::title(cause)));
    auto* symbol = new QLabel(frame);
    symbol->setPixmap(style()->standardIcon(severity(cause.score)).pixmap(32, 32));
    symbol->setAlignment(Qt::AlignTop);
    auto* title = wrappedLabel(qtText(CauseText::title(cause)), frame);
    title->setObjectName(QStringLiteral("title"));
    title->setStyleSheet(QStringLiteral("font-weight: bold"));

    auto* words = new QVBoxLayout;
    words->addWidget(title);
    words->addWidget(wrappedLabel(qtText(CauseText::detail(cause)), frame));
    if (cause.fix) {
        auto* fix = new QPushButton(
            qtText(CauseText::fixLabel(*cause.fix, cause.appName.value_or(""))), frame);
        connect(fix, &QPushButton::clicked, this, [this, index] { applyFix(index); });
        words->addWidget(fix, 0, Qt::AlignLeft);
    } else if (cause.appKey && readOnlyReasons_.contains(*cause.appKey)) {
        auto* reason = wrappedLabel(qtText(readOnlyReasons_.at(*cause.appKey)), frame);
        reason->setEnabled(false); // the palette's quieter text
        words->addWidget(reason);
    }
    auto* layout = new QHBoxLayout(frame);
    layout->addWidget(symbol);
    layout->addLayout(words, 1);
    return frame;
}

void WhySheet::applyFix(std::size_t index) {
    if (index >= causes_.size() || !causes_[index].fix) {
        return;
    }
    const Cause::Fix fix = *causes_[index].fix;
    const ProcessGroup* found = model_.group(fix.key);
    const auto onApp = [&](auto act) {
        if (found) {
            act(ProcessGroup(*found)); // the model's groups change under a dialog
        }
    };
    switch (fix.kind) {
    case Cause::Fix::Kind::quit:
        onApp([this](const ProcessGroup& group) { actions_.quit(group); });
        break;
    case Cause::Fix::Kind::forceQuit:
        onApp([this](const ProcessGroup& group) { actions_.forceQuit(group); });
        break;
    case Cause::Fix::Kind::pause:
        onApp([this](const ProcessGroup& group) { actions_.pauseOrResume(group); });
        break;
    case Cause::Fix::Kind::relaunch:
        onApp([this](const ProcessGroup& group) { actions_.relaunch(group); });
        break;
    case Cause::Fix::Kind::openStorageSettings:
        openSystemSettings("com.apple.settings.Storage");
        break;
    case Cause::Fix::Kind::openBatterySettings:
        openSystemSettings("com.apple.Battery-Settings.extension");
        break;
    case Cause::Fix::Kind::showStartupApps:
        emit startupAppsRequested();
        accept();
        return;
    }
    refresh();
}

} // namespace loadwarden

#include "app/IPList.h"

#include "app/shell/ShellLook.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>

#include <algorithm>
#include <iterator>

using namespace ShellLook;

IPList::IPList(QWidget* parent) : QWidget(parent) {
    setLayout(&layout_);
    layout_.setAlignment(Qt::AlignTop);

    auto* title = new QLabel(QLatin1StringView(kProducersTitle), this);
    QFont font = title->font();
    font.setPointSize(kProducersTitlePoints);
    font.setBold(true);
    title->setFont(font);
    title->setMargin(kProducersTitleMargin);
    layout_.addWidget(title, 0, Qt::AlignCenter);

    connect(&mapper_, &QSignalMapper::mappedString, this, &IPList::onIpClicked);
}

IPList::~IPList() = default;

IPList::Places::iterator IPList::find(const QString& ip) {
    return std::ranges::find(places_, ip, &Place::ip);
}

std::unique_ptr<QPushButton> IPList::makeButton(const QString& ip) {
    auto button = std::make_unique<QPushButton>(ip, this);
    button->setFixedSize(kAddressButtonSize);
    button->setStyleSheet(
        QLatin1StringView(ip == selectedIp_ ? kAddressButtonOn : kAddressButtonOff));
    button->setCursor(Qt::PointingHandCursor);
    button->setFocusPolicy(Qt::TabFocus); // no focus ring after a touch
    button->installEventFilter(this);
    connect(button.get(), &QPushButton::released, &mapper_, [this, pressed = button.get()] {
        if (!QGuiApplication::mouseButtons().testFlag(Qt::LeftButton)) // otherwise it slid off
            mapper_.map(pressed);
    });
    mapper_.setMapping(button.get(), ip);
    return button;
}

void IPList::addIP(const QString& ip) {
    auto place = find(ip);
    if (place == places_.end()) {
        places_.push_back({ip, nullptr});
        limitPlaces();
        place = std::prev(places_.end());
    }
    if (place->button != nullptr)
        return;
    place->button = makeButton(ip);
    layOut();
}

void IPList::limitPlaces() {
    if (places_.size() <= kMostAddresses)
        return;
    const auto gone =
        std::ranges::find_if(places_, [](const Place& place) { return place.button == nullptr; });
    if (gone != std::prev(places_.end()))
        places_.erase(gone);
}

void IPList::removeIp(const QString& ip) {
    const auto place = find(ip);
    if (place == places_.end() || place->button == nullptr)
        return;
    mapper_.removeMappings(place->button.get());
    place->button.reset();
    layOut();
}

void IPList::purgeIp() {
    for (Place& place : places_)
        place.button.reset();
    layOut();
}

void IPList::hold(bool isHeld) {
    isHeld_ = isHeld;
    if (!isHeld && !places_.empty() && places_.back().button == nullptr)
        layOut();
}

void IPList::layOut() {
    while (layout_.count() > 1) // the title stays
        delete layout_.takeAt(1);
    QWidget* above = nullptr;
    int empty = 0;
    const auto fillEmpty = [&] {
        for (; empty > 0; --empty)
            layout_.addItem(new QSpacerItem(kAddressButtonSize.width(),
                                            kAddressButtonSize.height() + layout_.spacing(),
                                            QSizePolicy::Fixed, QSizePolicy::Fixed));
    };
    for (const Place& place : places_) {
        if (place.button == nullptr) {
            ++empty;
            continue;
        }
        fillEmpty();
        layout_.addWidget(place.button.get(), 0, Qt::AlignCenter);
        place.button->show();
        if (above != nullptr)
            setTabOrder(above, place.button.get());
        above = place.button.get();
    }
    if (isHeld_)
        fillEmpty();
}

void IPList::selectNext(int step) {
    std::vector<QPushButton*> listed;
    std::size_t next = 0; // below the selected address
    for (const Place& place : places_) {
        if (place.button != nullptr)
            listed.push_back(place.button.get());
        if (place.ip == selectedIp_)
            next = listed.size();
    }
    if (step < 0) {
        const bool isListed = next > 0 && listed[next - 1]->text() == selectedIp_;
        next = selectedIp_.isEmpty() ? listed.size() - 1 : next - (isListed ? 2 : 1);
    }
    if (next >= listed.size()) // also before the first one
        return;
    onIpClicked(listed[next]->text());
    listed[next]->setFocus(Qt::TabFocusReason);
    emit walkedTo(listed[next]);
}

bool IPList::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::KeyPress: {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Up || key == Qt::Key_Down) { // a button would move the focus alone
            event->ignore();
            return true;
        }
        break;
    }
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        if (static_cast<QMouseEvent*>(event)->source() == Qt::MouseEventSynthesizedBySystem)
            return true; // the page handles the touch itself
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void IPList::onIpClicked(const QString& ip) {
    selectedIp_ = ip;
    emit selectedIpChanged(ip);
    for (const auto& [address, button] : places_) {
        if (button == nullptr)
            continue;
        const QString style =
            QLatin1StringView(address == ip ? kAddressButtonOn : kAddressButtonOff);
        if (button->styleSheet() != style) // because setting the same one restyles, too
            button->setStyleSheet(style);
    }
}

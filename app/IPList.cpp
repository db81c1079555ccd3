#include "app/IPList.h"

#include "app/shell/ShellLook.h"

#include <QLabel>
#include <QPushButton>

#include <algorithm>

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

IPList::Buttons::iterator IPList::find(const QString& ip) {
    return std::find_if(
        buttons_.begin(), buttons_.end(),
        [&ip](const auto& button) { return button->text() == ip; });
}

void IPList::addIP(const QString& ip) {
    if (find(ip) != buttons_.end())
        return;
    const auto& button = buttons_.emplace_back(std::make_unique<QPushButton>(ip, this));
    button->setFixedSize(kAddressButtonSize);
    button->setStyleSheet(
        QLatin1StringView(ip == selectedIp_ ? kAddressButtonOn : kAddressButtonOff));
    button->setCursor(Qt::PointingHandCursor);
    button->setFocusPolicy(Qt::TabFocus); // no focus ring after a touch
    connect(button.get(), &QPushButton::released, &mapper_, qOverload<>(&QSignalMapper::map));
    mapper_.setMapping(button.get(), ip);
    layout_.addWidget(button.get(), 0, Qt::AlignCenter);
}

void IPList::removeIp(const QString& ip) {
    const auto found = find(ip);
    if (found == buttons_.end())
        return;
    QObject::disconnect(found->get(), nullptr, &mapper_, nullptr);
    mapper_.removeMappings(found->get());
    layout_.removeWidget(found->get());
    buttons_.erase(found);
}

void IPList::purgeIp() {
    buttons_.clear();
}

void IPList::onIpClicked(const QString& ip) {
    selectedIp_ = ip;
    emit selectedIpChanged(ip);
    for (const auto& button : buttons_) {
        const QString style =
            QLatin1StringView(button->text() == ip ? kAddressButtonOn : kAddressButtonOff);
        if (button->styleSheet() != style) // because setting the same one restyles, too
            button->setStyleSheet(style);
    }
}

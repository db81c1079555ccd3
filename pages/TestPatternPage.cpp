#include "pages/TestPatternPage.h"

#include "app/shell/Configuration.h"
#include "app/shell/EventDispatcher.h"
#include "network/events/MireEvent.h"
#include "pages/PagesLook.h"
#include "pages/TestPatternButton.h"

#include <QTimer>

using namespace NetworkCompanion;
using namespace PagesLook;

namespace {

constexpr LV_NTC_EventType kEventTypes[] = {LV_NTC_EventType::Mire};

} // namespace

TestPatternPage::TestPatternPage(const Configuration& configuration, QWidget* parent)
    : ControlPage(parent), configuration_(configuration), layout_(new QGridLayout(this)),
      buttons_(new QButtonGroup(this)), mapper_(new QSignalMapper(this)),
      events_(this, kEventTypes) {
    layout_->setAlignment(Qt::AlignCenter);
    layout_->setSpacing(kSpacing);
    initTestPatternButtons();
}

TestPatternPage::~TestPatternPage() = default;

void TestPatternPage::initTestPatternButtons() {
    const int count = static_cast<int>(configuration_.testPatterns.size());
    for (int i = 0; i < count; ++i) {
        const Pattern pattern =
            configuration_.testPatterns.value(static_cast<LV_NTC_PictureType>(i));
        auto* button = new TestPatternButton(pattern, configuration_.patternButtonSize, this);
        connect(button, &TestPatternButton::pressed, mapper_, qOverload<>(&QSignalMapper::map));
        mapper_->setMapping(button, i);
        button->setFixedSize(configuration_.patternButtonSize);
        buttons_->addButton(button, i);
        layout_->addWidget(button, i / kPatternColumns, i % kPatternColumns);
    }
    connect(mapper_, &QSignalMapper::mappedInt, this, &TestPatternPage::onButtonPressed);
    mark(activeIndex_, true);
    preparePicturesFrom(0);
}

void TestPatternPage::preparePicturesFrom(int id) {
    if (button(id) == nullptr)
        return;
    QTimer::singleShot(0, this, [this, id] {
        button(id)->preparePicture();
        preparePicturesFrom(id + 1);
    });
}

void TestPatternPage::onButtonPressed(int id) {
    if (id == activeIndex_)
        return;
    MireEvent event(0, static_cast<LV_NTC_PictureType>(id));
    EventDispatcher::getInstance()->client().sendEvent(event);
    activate(id);
}

void TestPatternPage::receive(Event* event) {
    const auto* mire = dynamic_cast<const MireEvent*>(event);
    if (mire == nullptr)
        return;
    const int code = static_cast<int>(mire->picture());
    if (code >= 0 && code < buttons_->buttons().size() && code != activeIndex_)
        activate(code);
}

void TestPatternPage::activate(int id) {
    mark(activeIndex_, false);
    mark(id, true);
    activeIndex_ = id;
}

void TestPatternPage::mark(int id, bool active) {
    TestPatternButton* changed = button(id);
    if (changed == nullptr)
        return; // a configuration without patterns
    changed->setColor(QLatin1StringView(active ? kActiveColor : kIdleColor));
    changed->setAccessibleDescription(active ? QString::fromLatin1(kActivePatternDescription)
                                             : QString());
    changed->update();
    changed->repaint();
}

TestPatternButton* TestPatternPage::button(int id) const {
    return static_cast<TestPatternButton*>(buttons_->button(id));
}

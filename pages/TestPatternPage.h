#pragma once

#include "app/shell/EventListener.h"
#include "app/shell/EventSubscription.h"
#include "network/events/ProtocolTypes.h"
#include "pages/ControlPage.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QSignalMapper>

struct Configuration;
class TestPatternButton;

/// Sends the test pattern that the operator chooses, and marks the one that the Producer reports.
/// Members marked API are not used by the application itself.
class TestPatternPage final : public ControlPage, public EventListener {
    Q_OBJECT

public:
    /// `configuration` outlives the page.
    TestPatternPage(const Configuration& configuration, QWidget* parent);
    ~TestPatternPage() override;

    /// Marks the pattern of a MireEvent, without sending anything. Other events and unknown
    /// pictures are ignored.
    void receive(NetworkCompanion::Event* event) override;
    void lockPage() override {}

public slots:
    /// `id` is the code of a picture. Sends it and marks its button at once.
    void onButtonPressed(int id);

signals:
    void buttonClicked(int id); // API

private:
    void initTestPatternButtons();
    /// Loads the pictures before the page is shown, one in each event-loop iteration.
    void preparePicturesFrom(int id);
    void activate(int id);
    void mark(int id, bool active);
    [[nodiscard]] TestPatternButton* button(int id) const;

    const Configuration& configuration_;
    int activeIndex_ = 0; ///< code of the marked picture
    QGridLayout* layout_;
    QButtonGroup* buttons_;
    QSignalMapper* mapper_;
    EventSubscription events_;
};

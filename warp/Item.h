#pragma once

#include "network/ItemKey.h"
#include "warp/BlindButton.h"
#include "warp/NameLabel.h"

#include <QBasicTimer>
#include <QByteArray>
#include <QColor>
#include <QString>
#include <QWidget>

struct Configuration;

namespace NetworkCompanion {
class Event;
}

/// One row of the media list: shows an element of the Producer's show and requests its blind.
/// A click never changes the row itself; the Producer reports the new state.
class Item : public QWidget {
    Q_OBJECT

public:
    /// What the Producer last reported about the element's mesh.
    struct Deformation {
        int type = -1; ///< numbered as on the wire; -1 before the first report
        int rows = 0;
        int columns = 0;
        bool reset = false;
    };

    /// `configuration` has to outlive the row. Sizes are in pixels of the source.
    Item(NetworkCompanion::LV_NTC_ElementType elementType, int id, int dataIndex, int sourceWidth,
         int sourceHeight, const QString& name, const Configuration& configuration,
         QWidget* parent);

    /// The element of this row; type None for a screen part without a screen.
    virtual NetworkCompanion::ItemKey key() const = 0;
    NetworkCompanion::LV_NTC_ElementType elementType() const { return elementType_; }
    /// The cue of a media or texture, the screen's number, or the part's number within its screen.
    int id() const { return id_; }
    QString name() const { return name_; }
    /// Leaves the label unchanged.
    void setName(const QString& name) { name_ = name; }
    /// The element's identifier in requests for its mesh.
    int dataIndex() const { return dataIndex_; }
    int sourceWidth() const { return sourceWidth_; }
    int sourceHeight() const { return sourceHeight_; }

    /// Sets the element and resets the deformation to "not reported".
    void initDeformer(NetworkCompanion::LV_NTC_ElementType elementType, int id,
                      const QString& name);
    const Deformation& deformation() const { return deformation_; }
    void setDeformation(const Deformation& deformation) { deformation_ = deformation; }

    /// The text by which the list sorts and filters, and which the row shows.
    QString labelText() const { return labelText_; }
    void setLabelText(const QString& text);
    /// labelText() as UTF-8 with A to Z lowered: the list sorts by these bytes.
    const QByteArray& sortKey() const { return sortKey_; }

    bool isBlinded() const { return blinded_; }
    /// The state that the Producer reports; confirms a request for it, even a late one.
    void setBlinded(bool blinded);

    /// The label's colour while the row is not selected; applied by the next setActive().
    void setLabelColor(const QColor& color) { labelColor_ = color; }
    bool isActive() const { return active_; }
    /// Applies the look of a selected row, or of any other.
    void setActive(bool active);

    /// Creates label and eye on the first call; does nothing later. The list calls it when the row
    /// scrolls into view, because most rows of a long list never do.
    void createWidgets();
    /// The number of leading characters that the label has in common with a neighbour's. What
    /// follows them stays visible when the label is too long for the row.
    void showDifference(qsizetype common);
    /// Shows the whole label beside the row until the tool tip is hidden.
    void showWholeName() const;

public slots:
    void onBlindPressed();
    /// Requests the opposite of the shown blind state from the Producer.
    virtual void onBlind() = 0;

signals:
    void selected(Item* item);

protected:
    /// Sends the request for the opposite blind. The eye shows the wait for the Producer's report,
    /// and for a moment that none came.
    void sendBlind(NetworkCompanion::Event& request);
    void hideEvent(QHideEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    bool event(QEvent* event) override;

private:
    void showLabelText();
    void showBlindPicture();
    void setBlindState(BlindButton::State state);
    void showActive();

    NetworkCompanion::LV_NTC_ElementType elementType_;
    Deformation deformation_;
    int id_ = 0;
    QString name_;
    int dataIndex_;
    int sourceWidth_;
    int sourceHeight_;
    bool blinded_ = false;
    bool requestedBlind_ = false;
    BlindButton::State blindState_ = BlindButton::State::Reported;
    QBasicTimer blindTimer_; ///< runs in every other state
    bool active_ = false;
    QColor labelColor_;
    const Configuration* configuration_;
    QString labelText_;
    QByteArray sortKey_;
    qsizetype common_ = 0;
    NameLabel* label_ = nullptr; ///< null, like the eye, until createWidgets()
    BlindButton* blindButton_ = nullptr;
};

#pragma once

#include "network/events/ProtocolTypes.h"
#include "warp/BlindButton.h"
#include "warp/NameLabel.h"

#include <QByteArray>
#include <QColor>
#include <QString>
#include <QWidget>

struct Configuration;

/// One row of the media list: shows an element of the Producer's show and asks for its blind.
/// A click never changes the row itself; the new state comes back from the Producer.
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

    NetworkCompanion::LV_NTC_ElementType elementType() const { return elementType_; }
    /// The cue of a media or texture, the screen's number, or the part's number within its screen.
    int id() const { return id_; }
    QString name() const { return name_; }
    /// The label stays as it is.
    void setName(const QString& name) { name_ = name; }
    /// Identifies the element in requests for its mesh.
    int dataIndex() const { return dataIndex_; }
    int sourceWidth() const { return sourceWidth_; }
    int sourceHeight() const { return sourceHeight_; }

    /// Makes this the row of that element, with nothing reported about its mesh yet.
    void initDeformer(NetworkCompanion::LV_NTC_ElementType elementType, int id,
                      const QString& name);
    const Deformation& deformation() const { return deformation_; }
    void setDeformation(const Deformation& deformation) { deformation_ = deformation; }

    /// The name as the list sorts, filters and shows it.
    QString labelText() const { return labelText_; }
    void setLabelText(const QString& text);
    /// The label's text as the list compares it: UTF-8 with A to Z lowered.
    const QByteArray& sortKey() const { return sortKey_; }

    bool isBlinded() const { return blinded_; }
    void setBlinded(bool blinded);

    /// Of the name while the row is not selected; shown from the next setActive() on.
    void setLabelColor(const QColor& color) { labelColor_ = color; }
    bool isActive() const { return active_; }
    /// Shows the row as the selected one, or as one among others.
    void setActive(bool active);

    /// Gives the row what it shows, once: name, eye and colours. Until then it is an empty place;
    /// of a long list, a few rows are ever looked at.
    void furnish();

public slots:
    void onBlindPressed();
    /// Asks the Producer for the opposite of the blind state that this row shows.
    virtual void onBlind() = 0;

signals:
    void selected(Item* item);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    bool event(QEvent* event) override;

private:
    void showLabelText();
    void showBlindPicture();
    void showActive();

    NetworkCompanion::LV_NTC_ElementType elementType_;
    Deformation deformation_;
    int id_ = 0;
    QString name_;
    int dataIndex_;
    int sourceWidth_;
    int sourceHeight_;
    bool blinded_ = false;
    bool active_ = false;
    QColor labelColor_;
    const Configuration* configuration_;
    QString labelText_;
    QByteArray sortKey_;
    NameLabel* label_ = nullptr; ///< with the eye, not there before the row is furnished
    BlindButton* blindButton_ = nullptr;
};

#pragma once

#include "app/shell/IPage.h"
#include "app/shell/Timing.h"

#include <QHBoxLayout>

class Canvas;
class MediaListContainer;
struct Configuration;

/// The page for editing meshes: connects the media list at the left with the mesh editor and
/// forwards controller input to both.
class WarpPage final : public IPage {
    Q_OBJECT

public:
    /// `configuration` has to outlive the page.
    WarpPage(const Configuration& configuration, QWidget* parent, const Timing& timing = Timing());

    /// Clears the selection.
    void lockPage() override;
    void purgeMedia();
    /// Sets the keyboard focus to the editor.
    void giveFocusToCanvas();

public slots:
    // Relays: each emits the signal of its name.
    void onLeftAxisMoved(float x, float y) override { emit leftAxisMoved(x, y); }
    void onRightAxisMoved(float x, float y) override { emit rightAxisMoved(x, y); }
    void onPressure(float value) override { emit pressure(value); }
    void onAction(Action action) override { emit this->action(action); }
    // End of the relays.

signals:
    void leftAxisMoved(float x, float y);
    void rightAxisMoved(float x, float y);
    void pressure(float value);
    void action(Action action);

private:
    void initMediaList();
    void initCanvas(const Timing& timing);

    const Configuration& configuration_;
    QHBoxLayout* layout_;
    MediaListContainer* mediaListContainer_ = nullptr;
    Canvas* canvas_ = nullptr;
};

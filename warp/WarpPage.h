#pragma once

#include "app/shell/IPage.h"

#include <QHBoxLayout>

class Canvas;
class MediaListContainer;
struct Configuration;

/// The page on which meshes are edited: the list at the left, the editor in the rest. Joins the two
/// and passes controller input on to them.
class WarpPage final : public IPage {
    Q_OBJECT

public:
    /// `configuration` has to outlive the page.
    WarpPage(const Configuration& configuration, QWidget* parent);

    /// Drops the current item.
    void lockPage() override;
    void purgeMedia();
    /// Directs key presses to the editor.
    void giveFocusToCanvas();

public slots:
    void onLeftAxisMoved(float x, float y) override;
    void onRightAxisMoved(float x, float y) override;
    void onPressure(float value) override;
    void onAction(Action action) override;

signals:
    void leftAxisMoved(float x, float y);
    void rightAxisMoved(float x, float y);
    void pressure(float value);
    void action(Action action);

private:
    void initMediaList();
    void initCanvas();

    const Configuration& configuration_;
    QHBoxLayout* layout_;
    MediaListContainer* mediaListContainer_ = nullptr;
    Canvas* canvas_ = nullptr;
};

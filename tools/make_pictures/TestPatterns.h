#pragma once

#include <QImage>
#include <QList>
#include <QString>

/// One test picture and the name of its file.
struct TestPattern {
    QString fileName;
    QImage image;
};

/// The twelve test patterns of a Producer, 1760 x 1056 pixels each: eight times their size on the
/// companion's buttons.
QList<TestPattern> drawTestPatterns();

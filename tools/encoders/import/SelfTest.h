#pragma once

#include "encoders/Problem.h"

#include <QImage>
#include <QList>
#include <QString>

namespace Qorvane::Encoders {

/// What trying a pair of encoders showed.
struct SelfTestReport
{
    qsizetype dimension = 0; ///< length of both towers' vectors
    int pairs = 0;           ///< drawn pictures, each with a caption
    int ranked = 0;          ///< captions whose own picture was the most similar

    /// Whether the pair tells the pictures apart clearly better than chance. Not so for encoders that were
    /// never trained, or whose texts and pictures aren't of one model; also good ones may fail at drawings.
    bool isConvincing() const { return ranked * 2 > pairs; }

    friend bool operator==(const SelfTestReport &, const SelfTestReport &) = default;
};

/// A picture drawn by this program, and what it shows in both languages.
struct CaptionedDrawing
{
    QImage picture;
    QString english;
    QString chinese;
};
QList<CaptionedDrawing> captionedDrawings();

/// Runs two encoder files as the application does, on drawings and their captions: both must give vectors of
/// one length without a number that isn't finite, the same in every run, and not the same for all pictures or
/// all texts. `vocabulary` is the path of the family's JSON file. A damaged model may
/// end the process or never come to an end: see `doneApart`. Takes seconds. Any thread, but not one that must
/// stay responsive.
Outcome<SelfTestReport> selfTest(const QString &vision, const QString &text, const QString &vocabulary);

} // namespace Qorvane::Encoders

#pragma once

#include "model/CopySlot.h"

#include <QString>

// The copy of one image. Whoever builds one from texts passes them through the constructor, which
// cleans the call to action.
struct GeneratedCopy {
    QString title, subtitle, tagline, callToAction;
    QString publicationCaption;    // posted with the image
    QString imageNotes;            // not shown on the canvas

    GeneratedCopy() = default;
    GeneratedCopy(const QString& titleText, const QString& subtitleText, const QString& taglineText,
                  const QString& callToActionText, const QString& caption, const QString& notes);

    // The copy of an item that has not been analysed yet.
    static const GeneratedCopy& placeholder();

    const QString& text(CopySlot slot) const;

    // What a model wrote as call to action, without quotation marks, line breaks and punctuation
    // around it; a text over 24 characters or 4 words, or with a period inside, becomes a canned
    // one.
    static QString normalizedCallToAction(const QString& text);

    bool operator==(const GeneratedCopy&) const = default;
};

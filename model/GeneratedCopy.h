#pragma once

#include "model/CopySlot.h"

#include <QString>

// The copy of one image. Build it from texts through the constructor, which cleans the call to
// action.
struct GeneratedCopy {
    QString title, subtitle, tagline, callToAction;
    QString publicationCaption;    // posted with the image
    QString imageNotes;            // not drawn on the canvas

    GeneratedCopy() = default;
    GeneratedCopy(const QString& titleText, const QString& subtitleText, const QString& taglineText,
                  const QString& callToActionText, const QString& caption, const QString& notes);

    // The copy of an item that has not been analysed yet.
    static const GeneratedCopy& placeholder();

    const QString& text(CopySlot slot) const;

    // A model's call to action without quotation marks, line breaks and surrounding punctuation. A
    // text of more than 24 characters or 4 words, or with a period inside, is replaced by a canned
    // one.
    static QString normalizedCallToAction(const QString& text);

    bool operator==(const GeneratedCopy&) const = default;
};

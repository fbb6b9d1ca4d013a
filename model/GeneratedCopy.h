#pragma once

#include "model/CopySlot.h"

#include <QString>

// The texts for one image. The constructor from texts normalizes the call to action.
struct GeneratedCopy {
    QString title, subtitle, tagline, callToAction;
    QString publicationCaption;    // text to post together with the image
    QString imageNotes;            // remarks about the photo; never drawn

    GeneratedCopy() = default;
    GeneratedCopy(const QString& titleText, const QString& subtitleText, const QString& taglineText,
                  const QString& callToActionText, const QString& caption, const QString& notes);

    // The texts of an item whose photo has not been analysed yet.
    static const GeneratedCopy& placeholder();

    const QString& text(CopySlot slot) const;

    // Cleans a call to action that a language model wrote: removes double quotes and surrounding
    // punctuation, and turns line breaks into spaces. Returns a canned call to action if the text
    // is empty, has more than 24 characters or 4 words, or contains a period.
    static QString normalizedCallToAction(const QString& text);

    bool operator==(const GeneratedCopy&) const = default;
};

#pragma once

#include "model/GeneratedCopy.h"
#include "model/SocialFormat.h"

#include <QByteArray>
#include <QStringList>

#include <optional>

// What differs between engines in how their output becomes copy.
struct CopyWording {
    QString engine;        // named in the notes when phrases stand in for an answer
    QString imageNotes;    // the notes of copy that the engine wrote
    // Whether an answer that ends inside its object or inside a character is closed before it is
    // read.
    bool closesCutAnswers = false;

    static CopyWording mlx();
    static CopyWording llamaCpp();
};

// What an engine wrote, as text. Nothing for bytes that are not UTF-8 or hold no answer.
std::optional<QString> answerText(QByteArrayView output,
                                  const CopyWording& wording = CopyWording::mlx());

// The copy in an engine's answer: from its JSON object, or else from lines such as "TITLE: …". A
// text that it lacks comes from composeCopy().
GeneratedCopy parseGeneratedCopy(const QString& raw, const QString& objective, SocialFormat format,
                                 const CopyWording& wording = CopyWording::mlx());

// What stands behind the first colon of the first line that contains one of `keys` (upper-case) in
// any case, cleaned.
QString lineValue(const QString& raw, const QStringList& keys, const QString& fallback);

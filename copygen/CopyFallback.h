#pragma once

#include "model/GeneratedCopy.h"
#include "model/SocialFormat.h"

#include <QStringList>

// Copy made of fixed phrases, for what a model left out. `labels`: what the image shows, the
// subject first; may be empty. `engine` is named in the notes.
GeneratedCopy composeCopy(const QStringList& labels, const QString& objective, SocialFormat format,
                          const QString& engine);

// A title for an image of what the label says.
QString headline(const QString& label);

#pragma once

#include "model/SocialFormat.h"

#include <QString>

// The prompt with which a vision model is asked for the copy of an image.
namespace CopyPromptBuilder {

// `objective`: the campaign's, as the user typed it. An empty one is replaced by a general aim.
QString marketing(const QString& objective, SocialFormat format);

// The objective without what llama-mtmd-cli takes for the place of the picture ("<__media__>") or
// for a control token ("<turn|>").
QString withoutControlWords(const QString& objective);

}    // namespace CopyPromptBuilder

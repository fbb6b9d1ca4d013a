#pragma once

#include "cli/shared/BatchOptions.h"
#include "model/SocialPublishNetwork.h"

#include <variant>

// The parsed arguments of `moltiva publish`.
struct PublishOptions : BatchOptions {
    SocialPublishNetwork network = SocialPublishNetwork::instagram;
    SocialPublishPlacement placement = SocialPublishPlacement::feed;
    std::optional<QString> caption;    // empty: that of the first photo, if the texts give one
    bool isDryRun = false;
    bool isJson = false;
    bool isConfirmed = false;    // publish although a check advises against it
};

// Prints "moltiva publish: " and the sentence to standard error.
void tellOfPublishing(const QString& sentence);

// The options, or an exit status after the reason (or the help) was printed.
std::variant<PublishOptions, int> publishOptions(const QStringList& arguments);

// The network of this name; nothing if there is none.
std::optional<SocialPublishNetwork> networkNamed(const QString& name);
QString unknownNetwork(const QString& name);    // a sentence

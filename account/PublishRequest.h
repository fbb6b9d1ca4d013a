#pragma once

#include "account/AccountRecords.h"

#include <stop_token>

// The request that publishes a post, as a file: ten images may take 160 MB. In `request`, the
// images carry no bytes; `files` are the paths of the images, in the same order.

// Bytes of the request, for images of these sizes in bytes.
qint64 sizeOfPublishRequest(const SocialPublishRequest& request, const QList<qint64>& images);

struct WrittenPublishRequest {
    qint64 bytes = 0;
    QString problem;    // the system's error message; empty if the file was written
    bool isStopped = false;
};
// Writes the request to the new file `path`, which only its user may read. Blocks; holds only a
// small piece of the images in memory. Leaves no file behind if it fails or is stopped.
WrittenPublishRequest writePublishRequest(const SocialPublishRequest& request,
                                          const QStringList& files, const QString& path,
                                          std::stop_token stop = {});

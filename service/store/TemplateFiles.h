#pragma once

#include "account/AccountRecords.h"

#include <QDir>

// Templates that the administrator shares, as files in `folder`. Both functions throw Refusal.
void storeTemplate(const QDir& folder, const TemplateUploadRequest& upload);
void removeTemplate(const QDir& folder, const QString& fileName);

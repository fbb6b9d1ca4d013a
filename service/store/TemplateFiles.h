#pragma once

#include "account/AccountRecords.h"

#include <QDir>

// The templates that an administrator shares. Throw Refusal.
void storeTemplate(const QDir& folder, const TemplateUploadRequest& upload);
void removeTemplate(const QDir& folder, const QString& fileName);

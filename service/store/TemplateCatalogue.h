#pragma once

#include "account/AccountRecords.h"

#include <QDir>

class Database;
class Transaction;

// The templates that administrators share. A template is a file name with versions: distinct
// contents in the order of their first upload, of which the last ten are stored. One of them is
// current. A withdrawn template keeps its versions. All functions throw Refusal.

// Makes the uploaded content the current version. Withdraws `oldFileName` if it is another name.
void storeTemplate(Database& database, const TemplateUploadRequest& upload, qint64 now);
// Puts the name on the list of deletions, even if nothing was ever uploaded under it: it may be
// that of a design that comes with the program.
void withdrawTemplate(Database& database, const QString& fileName, qint64 now);

// The lists are left out if `since` is the version of the manifest, which identifies its contents.
TemplateManifest templateManifest(Transaction& transaction, const QString& since);

// `previous`: the version before the current one; before the oldest comes the newest. For a
// withdrawn template, that is the one that was current last.
enum class TemplateVersion { current, previous };
TemplateFileResponse templateFile(Transaction& transaction, const QString& fileName,
                                  TemplateVersion version);

// Moves the template files that earlier versions of the service have stored into the database.
void takeInTemplateFiles(Database& database, const QDir& folder, qint64 now);

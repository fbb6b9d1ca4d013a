#pragma once

#include <QString>

#include <optional>

// The version of the running program.
namespace AppVersion {

QString current();
QString build();      // rises with every release of the same version
QString display();    // version and build
// Compares digits as numbers and other characters alphabetically, part by part. A version that goes
// on with "-" or a letter comes before the one without. False for what is no version.
bool isRemoteVersionNewer(const std::optional<QString>& remote);

}    // namespace AppVersion

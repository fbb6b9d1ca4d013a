#pragma once

#include <QString>

#include <optional>

// The version of the running program.
namespace AppVersion {

QString current();
QString build();      // rises with every released build of one version
QString display();    // version and build
// Compares numbers part by part, and letters by the alphabet. False without a remote version.
bool isRemoteVersionNewer(const std::optional<QString>& remote);

}    // namespace AppVersion

#pragma once

class QDir;

// Signing in, the account and the settings as PNG files. False when a state was not reached.
bool takeAccountScreens(const QDir& out);

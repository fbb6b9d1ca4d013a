#pragma once

class QDir;

// Saves pictures of signing in, the account and the settings as PNG files in `out`. Returns false
// if the program did not reach one of the states.
bool takeAccountScreens(const QDir& out);

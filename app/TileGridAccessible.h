#pragma once

class QAccessibleInterface;
class QObject;
class QString;

// A list with one child a tile. Installed as an accessibility factory.
QAccessibleInterface* tileGridAccessible(const QString& className, QObject* object);

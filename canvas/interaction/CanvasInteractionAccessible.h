#pragma once

class QAccessibleInterface;
class QObject;
class QString;

// A canvas with one child a layer, topmost first. Installed as an accessibility factory.
QAccessibleInterface* canvasInteractionAccessible(const QString& className, QObject* object);

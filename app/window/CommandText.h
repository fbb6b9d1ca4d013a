#pragma once
#include <QStringView>

// Texts of those menu commands that buttons or the context menu of a tile run as well. The text
// identifies the command.
namespace CommandText {
inline constexpr QStringView importImages = u"Importar imágenes…",
                             importFolder = u"Importar carpeta…",
                             exportCurrent = u"Exportar actual…", exportAll = u"Exportar todo…",
                             publish = u"Publicar…", generate = u"Generar textos",
                             stop = u"Detener la importación", undo = u"Deshacer",
                             redo = u"Rehacer", copyStyle = u"Copiar estilo",
                             pasteStyle = u"Pegar estilo",
                             selectAll = u"Seleccionar todas las imágenes",
                             discard = u"Descartar imagen", keys = u"Atajos de teclado";
}

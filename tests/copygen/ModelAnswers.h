#pragma once

#include <QStringView>

// Answers as vision models give them.
namespace modelAnswers {

// Markdown fence plus courtesy text around a complete object, although the prompt forbids both.
inline constexpr QStringView fenceWithProse = uR"(¡Claro! Aquí tienes el JSON solicitado:

```json
{
  "title": "Café que despierta ideas",
  "subtitle": "Tu pausa de media mañana, con aroma de tueste lento",
  "tagline": "Granos de origen, manos que cuidan cada taza y un rincón tranquilo donde el reloj afloja. Ven a probar por qué tantos vecinos empiezan aquí su día.",
  "callToAction": "Reserva ahora",
  "publicationCaption": "El primer sorbo lo cambia todo. Te esperamos en la barra con tueste de la semana y bollería recién hecha. Cuéntanos, ¿solo o con leche? #Café #Desayuno #Barrio"
}
```

Espero que te sirva para tu campaña.
)";

// Token limit hit inside the last string: pretty-printed object without closing quote or brace, so
// there is no last '}' at all.
inline constexpr QStringView truncatedPrettyAtLimit = uR"({
  "title": "Verano a flor de piel",
  "subtitle": "Protección ligera que se nota desde el primer minuto al sol",
  "tagline": "Una textura que desaparece al instante, un perfume que recuerda a la playa de siempre y la tranquilidad de saber que tu piel está cuidada todo el día.",
  "callToAction": "Descubre más",
  "publicationCaption": "Hay veranos que se recuerdan por la luz y otros por cómo nos sentimos en nuestra propia piel. ☀️ Este protector nació para acompañarte sin que lo notes: se funde en segundos, no deja rastro blanco y aguanta el chapuzón más largo. Llévalo en la mochila, en el coche, en la bolsa de la piscina. Porque cuidarte no debería quitarte tiempo de disfrutar, sino regalarte más horas fuera: un paseo al amanecer, una siesta bajo el pino, la última partida de palas cuando ya se va la gente. Esta semana, con tu compra, te damos la talla viaj)";

// Opening fence, everything on ONE line, cut by the limit: a line-based reader sees every key on
// the same line.
inline constexpr QStringView truncatedCompactInFence = uR"(```json
{"title":"Tu casa, en calma","subtitle":"Muebles de madera clara para rincones que invitan a quedarse","tagline":"Diseño sereno, piezas hechas para durar y ese tono miel que convierte cualquier pared blanca en un lugar con historia propia, también en pisos pequeños.","callToAction":"Ver colección","publicationCaption":"A veces basta con mover una silla para que la tarde cambie. En nuestra nueva colección encontrarás mesas, estantes y asientos pensados para vivirse: madera certificada, acabados al agua y un montaje que se entiende a la primera. Mide tu espacio, mándanos una foto y te proponemos una combinación sin compromiso. Además, durante este mes el envío corre de nuestra cuenta y tienes treinta días para cambiar de idea sin dar explicaciones. Guarda esta publicación para cuando toque ordenar el salón y comparte con quien siempre dice que le falta una estanter)";

// Reasoning text that itself contains braces: the first '{' is not the start of the answer.
inline constexpr QStringView thoughtTextWithBraces = uR"(<|channel>thought
El usuario quiere un JSON con las claves {title, subtitle, tagline, callToAction, publicationCaption}. La imagen muestra una bicicleta urbana roja junto al mar. Debo mantener title por debajo de 42 caracteres: {title: "Pedalea tu ciudad"} cumple.
<channel|>{
  "title": "Pedalea tu ciudad",
  "subtitle": "La bici urbana que convierte cada trayecto en un paseo",
  "tagline": "Cuadro ligero, frenos seguros y un rojo que se ve venir desde lejos. Pensada para ir a trabajar sin llegar cansado y para volver por el camino largo.",
  "callToAction": "Comprar ahora",
  "publicationCaption": "Menos atascos, más brisa. Ven a probarla este sábado y llévate el primer ajuste gratis. #Bici #Ciudad #MoverseMejor"
}
)";

// Typographic quotation marks as JSON delimiters, one string opened straight and closed curly.
inline constexpr QStringView mixedCurlyQuotes = uR"({
  “title”: “Luz que abraza”,
  “subtitle”: "Velas de soja hechas a mano, gota a gota”,
  “tagline”: “Aromas de higuera y romero, mecha de algodón y un vaso que luego se convierte en jarrón. Pequeños rituales para cerrar el día despacio y sin pantallas.”,
  “callToAction”: “Ver colección”,
  “publicationCaption”: “Enciende, respira, apaga el móvil. Así de simple. Edición limitada de otoño ya disponible. #Velas #HechoAMano #Otoño”
})";

// The same keys twice, first with placeholders; the repeated callToAction is a sentence that breaks
// the 24-character rule.
inline constexpr QStringView duplicateKeysPlaceholderFirst = uR"({
  "title": "...",
  "subtitle": "...",
  "title": "Tu sonrisa, sin esperas",
  "subtitle": "Primera revisión dental en menos de 48 horas",
  "tagline": "Un equipo cercano, precios claros y una silla donde por fin no aprietas los puños. Salir riendo del dentista también es posible, y empieza con una llamada.",
  "callToAction": "Pide tu cita",
  "callToAction": "Pide tu cita hoy mismo y consigue la limpieza gratis.",
  "publicationCaption": "Sabemos que lo llevas posponiendo meses. Esta semana, revisión sin coste. #Dentista #Salud #Sonrisa"
})";

// Real line breaks inside string values (the model lays out the caption as a post); strict JSON
// rejects control characters.
inline constexpr QStringView rawNewlinesInString = uR"({
  "title": "Viaja ligero",
  "subtitle": "La maleta de cabina que cumple lo que promete",
  "tagline": "Ruedas silenciosas, cierre seguro y hueco para todo lo que de verdad usas.
Diez años de garantía y piezas de recambio siempre disponibles.",
  "callToAction": "Descubre más",
  "publicationCaption": "Checklist para tu próxima escapada:
✅ Documentación
✅ Cargador
✅ Una maleta que no te falle

Guárdalo para luego ✈️

#Viajes #Maleta #Escapada"
})";

// Valid JSON that ignores the requested shape: an extra outer key, a list, null and objects instead
// of text.
inline constexpr QStringView wrappedAndWrongTypes = uR"({
  "publicacion": {
    "title": ["Fuerza a tu ritmo", "Entrena como tú eres"],
    "subtitle": null,
    "tagline": {"texto": "Entrenos de 30 minutos, grupos pequeños y una entrenadora que se aprende tu nombre el primer día."},
    "callToAction": {"text": "Reserva tu plaza", "url": ""},
    "publicationCaption": "Plazas limitadas para noviembre. Escríbenos por privado. #Fitness #Entreno #Barrio"
  }
})";

}    // namespace modelAnswers

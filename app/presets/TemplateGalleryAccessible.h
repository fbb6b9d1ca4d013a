#pragma once

// Makes screen readers see each TemplateGallery as a list of its parts. Call it before the first
// one is shown to them.
void makeTemplateGalleriesAccessible();

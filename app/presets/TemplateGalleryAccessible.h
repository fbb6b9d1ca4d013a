#pragma once

// Lets screen readers see every TemplateGallery as a list of its parts.
void makeTemplateGalleriesAccessible();

#pragma once

#include <string>

// GLSL 150 text of the meter and focus-ring programs, by key.
namespace TRQShaderSources
{
enum ColourMode
{
    uniformColour = 0,
    alphaColour = 1,
    rgbaColour = 2
};

enum Shape
{
    circle = 0,
    gradientCircle = 1,
    line = 2,
    point = 3,
    rect = 4
};

enum DrawStyle
{
    stroked = 0,
    filled = 1
};

const char* colourModeName (int mode);
const char* shapeName (int shape);
const char* styleName (int style);

std::string primitiveVertex (int colourMode);
std::string primitiveFragment (int colourMode);

std::string shapeVertex (int shape, int colourMode);
std::string shapeGeometry (int shape, int colourMode);
std::string shapeFragment (int shape, int style, int colourMode);

// Full-viewport textured quad for the cached background.
std::string textureVertex();
std::string textureFragment();
// The cached background's two further passes: a 15 x 15 Gaussian blur of
// imageTexture, and imageTexture1 laid over imageTexture0 by its own alpha.
std::string blurFragment();
std::string mixFragment();
} // namespace TRQShaderSources

#include "meters/TRQShapeShaderProgram.h"

#include "meters/TRQShaderSources.h"

#ifndef GL_GEOMETRY_SHADER
#define GL_GEOMETRY_SHADER 0x8DD9
#endif

TRQShapeShaderProgram::TRQShapeShaderProgram (juce::OpenGLContext& context, int key)
    : shader (context)
{
    const int shape = key / 100, style = (key / 10) % 10, mode = key % 10;
    name = juce::String ("TRQShapeShader") + TRQShaderSources::shapeName (shape) +
           TRQShaderSources::styleName (style) + TRQShaderSources::colourModeName (mode);
    valid = shader.addVertexShader (TRQShaderSources::shapeVertex (shape, mode)) &&
            shader.addShader (TRQShaderSources::shapeGeometry (shape, mode), GL_GEOMETRY_SHADER) &&
            shader.addFragmentShader (TRQShaderSources::shapeFragment (shape, style, mode)) && shader.link();
    if (!valid)
    {
        DBG (name << ": " << shader.getLastError());
    }
}

#include "meters/TRQPrimitiveShaderProgram.h"

#include "meters/TRQShaderSources.h"

TRQPrimitiveShaderProgram::TRQPrimitiveShaderProgram (juce::OpenGLContext& context, int colourMode)
    : shader (context)
    , name (juce::String ("TRQPrimitiveShader") + TRQShaderSources::colourModeName (colourMode))
    , mode (colourMode)
{
    valid = shader.addVertexShader (TRQShaderSources::primitiveVertex (colourMode)) &&
            shader.addFragmentShader (TRQShaderSources::primitiveFragment (colourMode)) && shader.link();
    if (!valid)
    {
        DBG (name << ": " << shader.getLastError());
    }
}

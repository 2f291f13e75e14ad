#include "meters/TRQTextureShaderProgram.h"

#include "meters/TRQShaderSources.h"

namespace
{
const char* kindName (int kind)
{
    static const char* names[] = {"Plain", "Blur", "Mix"};
    return kind >= 0 && kind < 3 ? names[kind] : "";
}

std::string fragmentFor (int kind)
{
    if (kind == TRQTextureShaderProgram::blur)
        return TRQShaderSources::blurFragment();
    if (kind == TRQTextureShaderProgram::mix)
        return TRQShaderSources::mixFragment();
    return TRQShaderSources::textureFragment();
}
} // namespace

TRQTextureShaderProgram::TRQTextureShaderProgram (juce::OpenGLContext& context, int k)
    : shader (context)
    , name (juce::String ("TRQTextureShader") + kindName (k))
    , programKind (k)
{
    valid = shader.addVertexShader (TRQShaderSources::textureVertex()) &&
            shader.addFragmentShader (fragmentFor (k)) && shader.link();
    if (!valid)
    {
        DBG (name << ": " << shader.getLastError());
    }
}

#pragma once

#include <juce_opengl/juce_opengl.h>

// Full-viewport passes over textures: the cached background as it is, blurred, or
// with a second texture laid over it by that texture's alpha.
class TRQTextureShaderProgram
{
public:
    enum Kind
    {
        plain = 0,
        blur = 1,
        mix = 2
    };

    TRQTextureShaderProgram (juce::OpenGLContext& context, int kind);

    bool isValid() const { return valid; }
    juce::OpenGLShaderProgram& program() { return shader; }
    const juce::String& debugName() const { return name; }
    int kind() const { return programKind; }

private:
    juce::OpenGLShaderProgram shader;
    juce::String name;
    int programKind;
    bool valid = false;
};

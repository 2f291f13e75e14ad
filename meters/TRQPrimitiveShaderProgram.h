#pragma once

#include <juce_opengl/juce_opengl.h>

// Vertex lists in one of three colour modes: a uniform colour, a uniform colour
// with per-vertex alpha, or per-vertex colours.
class TRQPrimitiveShaderProgram
{
public:
    TRQPrimitiveShaderProgram (juce::OpenGLContext& context, int colourMode);

    bool isValid() const { return valid; }
    juce::OpenGLShaderProgram& program() { return shader; }
    const juce::String& debugName() const { return name; }
    int colourMode() const { return mode; }

private:
    juce::OpenGLShaderProgram shader;
    juce::String name;
    int mode;
    bool valid = false;
};

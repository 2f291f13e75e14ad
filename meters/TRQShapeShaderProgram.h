#pragma once

#include <juce_opengl/juce_opengl.h>

// Analytic anti-aliased shapes: points or lines grown into quads by a geometry
// stage and shaded by distance. The key packs shape, style and colour mode.
class TRQShapeShaderProgram
{
public:
    static int keyFor (int shape, int style, int colourMode) { return shape * 100 + style * 10 + colourMode; }

    TRQShapeShaderProgram (juce::OpenGLContext& context, int key);

    bool isValid() const { return valid; }
    juce::OpenGLShaderProgram& program() { return shader; }
    const juce::String& debugName() const { return name; }

private:
    juce::OpenGLShaderProgram shader;
    juce::String name;
    bool valid = false;
};

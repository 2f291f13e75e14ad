#pragma once

#include "meters/TRQPrimitiveShaderProgram.h"
#include "meters/TRQShaderBuilder.h"
#include "meters/TRQShapeShaderProgram.h"
#include "meters/TRQTextureShaderProgram.h"

#include <juce_opengl/juce_opengl.h>

#include <vector>

// Draws the meters, the focus ring and the cached background straight into the GL
// viewport. Callers work in canvas units (793 x 380, y down) inside a region; the
// renderer maps them to points and device pixels. GL thread only.
class TRQShapeRenderer
{
public:
    explicit TRQShapeRenderer (juce::OpenGLContext& context);
    ~TRQShapeRenderer();

    // canvasScale maps canvas units to points, renderScale points to device pixels.
    void beginFrame (float canvasScale, int viewportWidthPixels, int viewportHeightPixels, float renderScale);

    // The target area in canvas units; vertices are relative to its top left.
    void setRegion (juce::Rectangle<float> canvasRegion);
    void setColour (juce::Colour colour) { currentColour = colour; }
    juce::Colour getColour() const { return currentColour; }

    float strokeWidth = 1.0f;
    float gradientFraction = 1.0f;
    float pointRadius = 2.0f;

    // Raw draws: vertices in points, y up, relative to the region's bottom left.
    void drawPrimitive (const float* vertices, int count, GLenum primitive, int colourMode);
    void drawShape (int shape, int style, const float* vertices, int count, int colourMode);

    // Canvas-unit helpers, relative to the region.
    void fillRect (juce::Rectangle<float> area);
    void strokeRect (juce::Rectangle<float> area, float width);
    void gradientCircle (juce::Point<float> centre, float radius);
    // Pairs of points joined as separate segments.
    void lines (const std::vector<juce::Point<float>>& segments, float width);
    // A strip of triangles in the uniform colour.
    void triangleStrip (const std::vector<juce::Point<float>>& points);
    // A ring of the given width whose centre line is the rounded rectangle area
    // with corner radius; a radius of half the shorter side makes a circle or a
    // stadium.
    void ringAround (juce::Rectangle<float> area, float radius, float width);

    // The cached background: a texture the size of the viewport.
    void drawTexture (juce::OpenGLTexture& texture, int imageWidth, int imageHeight);
    // The same, through the 15 x 15 Gaussian blur.
    void drawBlurred (GLuint textureId);
    // overlayId over baseId by the overlay's own alpha: mix (t0, t1, t1.a).
    void drawMix (GLuint baseId, GLuint overlayId);

    // Whether any program failed to build or any draw saw a GL error.
    bool hasFailed() const { return failed; }
    void release();

    size_t programCount() const { return primitives.size() + shapes.size() + textures.size(); }

private:
    juce::Point<float> toPoints (juce::Point<float> local) const;
    void bindCommon (juce::OpenGLShaderProgram& program);
    // One quad over the whole viewport with the textures bound to units 0, 1, ...
    void drawTextured (int kind, std::initializer_list<std::pair<const char*, GLuint>> samplers);
    void uploadAndDraw (juce::OpenGLShaderProgram& program, const float* vertices, int count, int stride,
                        GLenum primitive, const std::vector<std::pair<const char*, int>>& attributes);

    juce::OpenGLContext& context;
    TRQShaderBuilder<TRQPrimitiveShaderProgram> primitives;
    TRQShaderBuilder<TRQShapeShaderProgram> shapes;
    TRQShaderBuilder<TRQTextureShaderProgram> textures;
    GLuint vertexBuffer = 0;
    float canvasScale = 1.0f, renderScale = 1.0f;
    float viewportWidthPoints = 1.0f, viewportHeightPoints = 1.0f;
    juce::Rectangle<float> region; // canvas units
    juce::Colour currentColour{juce::Colours::white};
    bool failed = false;
    std::vector<float> scratch;
    std::vector<juce::Point<float>> ringPoints;
};

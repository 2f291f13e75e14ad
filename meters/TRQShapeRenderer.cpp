#include "meters/TRQShapeRenderer.h"

#include "meters/TRQShaderSources.h"

using namespace juce::gl;

TRQShapeRenderer::TRQShapeRenderer (juce::OpenGLContext& c)
    : context (c)
{
    scratch.reserve (4096);
}

TRQShapeRenderer::~TRQShapeRenderer() = default;

void TRQShapeRenderer::release()
{
    primitives.clear();
    shapes.clear();
    textures.clear();
    if (vertexBuffer != 0)
        glDeleteBuffers (1, &vertexBuffer);
    vertexBuffer = 0;
}

void TRQShapeRenderer::beginFrame (float cs, int widthPixels, int heightPixels, float rs)
{
    canvasScale = cs;
    renderScale = rs > 0.0f ? rs : 1.0f;
    viewportWidthPoints = (float)widthPixels / renderScale;
    viewportHeightPoints = (float)heightPixels / renderScale;
    if (vertexBuffer == 0)
        glGenBuffers (1, &vertexBuffer);
}

void TRQShapeRenderer::setRegion (juce::Rectangle<float> canvasRegion)
{
    region = canvasRegion;
}

juce::Point<float> TRQShapeRenderer::toPoints (juce::Point<float> local) const
{
    return {local.x * canvasScale, (region.getHeight() - local.y) * canvasScale};
}

void TRQShapeRenderer::bindCommon (juce::OpenGLShaderProgram& program)
{
    program.use();
    const float regionX = region.getX() * canvasScale;
    const float regionY = viewportHeightPoints - region.getBottom() * canvasScale;
    const auto id = program.getProgramID();
    auto set1 = [id] (const char* name, float v)
    {
        const auto loc = glGetUniformLocation (id, name);
        if (loc >= 0)
            glUniform1f (loc, v);
    };
    if (auto loc = glGetUniformLocation (id, "viewportSize"); loc >= 0)
        glUniform2f (loc, viewportWidthPoints, viewportHeightPoints);
    if (auto loc = glGetUniformLocation (id, "drawRegion"); loc >= 0)
        glUniform4f (loc, regionX, regionY, region.getWidth() * canvasScale,
                     region.getHeight() * canvasScale);
    if (auto loc = glGetUniformLocation (id, "color"); loc >= 0)
        glUniform4f (loc, currentColour.getFloatRed(), currentColour.getFloatGreen(),
                     currentColour.getFloatBlue(), currentColour.getFloatAlpha());
    set1 ("scale", renderScale);
    set1 ("strokeWidth", strokeWidth);
    set1 ("pointRadius", pointRadius);
    set1 ("gradientFraction", gradientFraction);
}

void TRQShapeRenderer::uploadAndDraw (juce::OpenGLShaderProgram& program, const float* vertices, int count,
                                      int stride, GLenum primitive,
                                      const std::vector<std::pair<const char*, int>>& attributes)
{
    if (count <= 0)
        return;
    // Scissor to the region, leaving the caller's scissor as it was.
    const GLboolean scissorWasOn = glIsEnabled (GL_SCISSOR_TEST);
    GLint oldBox[4] = {};
    glGetIntegerv (GL_SCISSOR_BOX, oldBox);
    const float px = renderScale * canvasScale;
    glEnable (GL_SCISSOR_TEST);
    glScissor ((GLint)std::floor (region.getX() * px),
               (GLint)std::floor ((viewportHeightPoints - region.getBottom() * canvasScale) * renderScale),
               (GLsizei)std::ceil (region.getWidth() * px), (GLsizei)std::ceil (region.getHeight() * px));

    glBindBuffer (GL_ARRAY_BUFFER, vertexBuffer);
    glBufferData (GL_ARRAY_BUFFER, (GLsizeiptr)((size_t)count * (size_t)stride * sizeof (float)), vertices,
                  GL_STREAM_DRAW);
    std::vector<GLint> enabled;
    int offset = 0;
    for (const auto& [name, size] : attributes)
    {
        const GLint loc = glGetAttribLocation (program.getProgramID(), name);
        if (loc >= 0)
        {
            glEnableVertexAttribArray ((GLuint)loc);
            glVertexAttribPointer ((GLuint)loc, size, GL_FLOAT, GL_FALSE, stride * (GLsizei)sizeof (float),
                                   (const void*)(size_t)(offset * (int)sizeof (float)));
            enabled.push_back (loc);
        }
        offset += size;
    }
    glDrawArrays (primitive, 0, count);
    for (auto loc : enabled)
        glDisableVertexAttribArray ((GLuint)loc);
    glBindBuffer (GL_ARRAY_BUFFER, 0);

    glScissor (oldBox[0], oldBox[1], oldBox[2], oldBox[3]);
    if (!scissorWasOn)
        glDisable (GL_SCISSOR_TEST);
}

namespace
{
int colourFloats (int mode)
{
    return mode == TRQShaderSources::alphaColour ? 1 : mode == TRQShaderSources::rgbaColour ? 4 : 0;
}

void addColourAttribute (std::vector<std::pair<const char*, int>>& attributes, int mode)
{
    if (mode == TRQShaderSources::alphaColour)
        attributes.push_back ({"alpha", 1});
    else if (mode == TRQShaderSources::rgbaColour)
        attributes.push_back ({"colorVec", 4});
}
} // namespace

void TRQShapeRenderer::drawPrimitive (const float* vertices, int count, GLenum primitive, int colourMode)
{
    auto* program = primitives.get (context, colourMode);
    if (program == nullptr)
    {
        failed = true;
        return;
    }
    bindCommon (program->program());
    std::vector<std::pair<const char*, int>> attributes{{"position", 2}};
    addColourAttribute (attributes, colourMode);
    uploadAndDraw (program->program(), vertices, count, 2 + colourFloats (colourMode), primitive, attributes);
}

void TRQShapeRenderer::drawShape (int shape, int style, const float* vertices, int count, int colourMode)
{
    auto* program = shapes.get (context, TRQShapeShaderProgram::keyFor (shape, style, colourMode));
    if (program == nullptr)
    {
        failed = true;
        return;
    }
    bindCommon (program->program());
    std::vector<std::pair<const char*, int>> attributes{{"position", 2}};
    int stride = 2;
    if (shape == TRQShaderSources::circle || shape == TRQShaderSources::gradientCircle)
    {
        attributes.push_back ({"radius", 1});
        stride += 1;
    }
    if (shape == TRQShaderSources::rect)
    {
        attributes.push_back ({"size", 2});
        stride += 2;
    }
    addColourAttribute (attributes, colourMode);
    stride += colourFloats (colourMode);
    const GLenum primitive = shape == TRQShaderSources::line ? GL_LINES : GL_POINTS;
    uploadAndDraw (program->program(), vertices, count, stride, primitive, attributes);
}

void TRQShapeRenderer::fillRect (juce::Rectangle<float> area)
{
    const auto lowerLeft = toPoints (area.getBottomLeft());
    const float v[4] = {lowerLeft.x, lowerLeft.y, area.getWidth() * canvasScale,
                        area.getHeight() * canvasScale};
    drawShape (TRQShaderSources::rect, TRQShaderSources::filled, v, 1, TRQShaderSources::uniformColour);
}

void TRQShapeRenderer::strokeRect (juce::Rectangle<float> area, float width)
{
    strokeWidth = width * canvasScale;
    const auto lowerLeft = toPoints (area.getBottomLeft());
    const float v[4] = {lowerLeft.x, lowerLeft.y, area.getWidth() * canvasScale,
                        area.getHeight() * canvasScale};
    drawShape (TRQShaderSources::rect, TRQShaderSources::stroked, v, 1, TRQShaderSources::uniformColour);
}

void TRQShapeRenderer::gradientCircle (juce::Point<float> centre, float radius)
{
    const auto c = toPoints (centre);
    const float v[3] = {c.x, c.y, radius * canvasScale};
    drawShape (TRQShaderSources::gradientCircle, TRQShaderSources::filled, v, 1,
               TRQShaderSources::uniformColour);
}

void TRQShapeRenderer::lines (const std::vector<juce::Point<float>>& segments, float width)
{
    strokeWidth = width * canvasScale;
    scratch.clear();
    for (const auto& p : segments)
    {
        const auto q = toPoints (p);
        scratch.push_back (q.x);
        scratch.push_back (q.y);
    }
    drawShape (TRQShaderSources::line, TRQShaderSources::stroked, scratch.data(), (int)segments.size(),
               TRQShaderSources::uniformColour);
}

void TRQShapeRenderer::triangleStrip (const std::vector<juce::Point<float>>& points)
{
    scratch.clear();
    for (const auto& p : points)
    {
        const auto q = toPoints (p);
        scratch.push_back (q.x);
        scratch.push_back (q.y);
    }
    drawPrimitive (scratch.data(), (int)points.size(), GL_TRIANGLE_STRIP, TRQShaderSources::uniformColour);
}

void TRQShapeRenderer::ringAround (juce::Rectangle<float> area, float radius, float width)
{
    const float half = width * 0.5f;
    const float shortSide = std::min (area.getWidth(), area.getHeight());
    radius = juce::jlimit (0.0f, shortSide * 0.5f, radius);
    // The outer and inner edges walked together, corner by corner, as one strip:
    // no piece overlaps another, so a translucent ring stays even.
    const auto outer = area.expanded (half);
    const auto inner = area.reduced (std::min (half, shortSide * 0.5f));
    const float outerRadius = radius + half, innerRadius = std::max (radius - half, 0.0f);
    constexpr int segments = 10;
    auto centreOf = [] (juce::Rectangle<float> r, float rad, int corner)
    {
        switch (corner)
        {
        case 0:
            return juce::Point<float> (r.getRight() - rad, r.getBottom() - rad);
        case 1:
            return juce::Point<float> (r.getX() + rad, r.getBottom() - rad);
        case 2:
            return juce::Point<float> (r.getX() + rad, r.getY() + rad);
        default:
            return juce::Point<float> (r.getRight() - rad, r.getY() + rad);
        }
    };
    ringPoints.clear();
    for (int corner = 0; corner < 4; ++corner)
    {
        const auto outerCentre = centreOf (outer, outerRadius, corner);
        const auto innerCentre = centreOf (inner, innerRadius, corner);
        for (int i = 0; i <= segments; ++i)
        {
            // Angles run clockwise on screen from the right edge downwards.
            const float angle =
                juce::MathConstants<float>::halfPi * ((float)corner + (float)i / (float)segments);
            const juce::Point<float> direction (std::cos (angle), std::sin (angle));
            ringPoints.push_back (outerCentre + direction * outerRadius);
            ringPoints.push_back (innerCentre + direction * innerRadius);
        }
    }
    ringPoints.push_back (ringPoints[0]);
    ringPoints.push_back (ringPoints[1]);
    triangleStrip (ringPoints);
}

void TRQShapeRenderer::drawTexture (juce::OpenGLTexture& texture, int, int)
{
    drawTextured (TRQTextureShaderProgram::plain, {{"imageTexture", texture.getTextureID()}});
}

void TRQShapeRenderer::drawBlurred (GLuint textureId)
{
    drawTextured (TRQTextureShaderProgram::blur, {{"imageTexture", textureId}});
}

void TRQShapeRenderer::drawMix (GLuint baseId, GLuint overlayId)
{
    drawTextured (TRQTextureShaderProgram::mix, {{"imageTexture0", baseId}, {"imageTexture1", overlayId}});
}

void TRQShapeRenderer::drawTextured (int kind, std::initializer_list<std::pair<const char*, GLuint>> samplers)
{
    auto* program = textures.get (context, kind);
    if (program == nullptr)
    {
        failed = true;
        return;
    }
    if (vertexBuffer == 0)
        glGenBuffers (1, &vertexBuffer);
    auto& shader = program->program();
    shader.use();
    GLenum unit = 0;
    for (const auto& [name, id] : samplers)
    {
        glActiveTexture (GL_TEXTURE0 + unit);
        glBindTexture (GL_TEXTURE_2D, id);
        if (auto loc = glGetUniformLocation (shader.getProgramID(), name); loc >= 0)
            glUniform1i (loc, (GLint)unit);
        ++unit;
    }
    const float quad[8] = {-1.0f, -1.0f, 1.0f, -1.0f, -1.0f, 1.0f, 1.0f, 1.0f};
    glBindBuffer (GL_ARRAY_BUFFER, vertexBuffer);
    glBufferData (GL_ARRAY_BUFFER, sizeof (quad), quad, GL_STREAM_DRAW);
    const GLint loc = glGetAttribLocation (shader.getProgramID(), "position");
    if (loc >= 0)
    {
        glEnableVertexAttribArray ((GLuint)loc);
        glVertexAttribPointer ((GLuint)loc, 2, GL_FLOAT, GL_FALSE, 0, nullptr);
        glDrawArrays (GL_TRIANGLE_STRIP, 0, 4);
        glDisableVertexAttribArray ((GLuint)loc);
    }
    glBindBuffer (GL_ARRAY_BUFFER, 0);
    while (unit > 0)
    {
        --unit;
        glActiveTexture (GL_TEXTURE0 + unit);
        glBindTexture (GL_TEXTURE_2D, 0);
    }
}

#include "meters/TRQShaderSources.h"

namespace TRQShaderSources
{
namespace
{
const char* header = "#version 150\n";

std::string colourDeclarationsOut (int mode)
{
    if (mode == alphaColour)
        return "in float alpha;\nout float alphaV;\n";
    if (mode == rgbaColour)
        return "in vec4 colorVec;\nout vec4 colorV;\n";
    return "";
}

std::string colourPassOut (int mode)
{
    if (mode == alphaColour)
        return "    alphaV = alpha;\n";
    if (mode == rgbaColour)
        return "    colorV = colorVec;\n";
    return "";
}

// Fragment-side colour before the shape's coverage: uniform colour, with the
// vertex alpha, or the per-vertex colour.
std::string fragmentColourIn (int mode, const char* suffix)
{
    if (mode == alphaColour)
        return std::string ("in float alpha") + suffix + ";\n";
    if (mode == rgbaColour)
        return std::string ("in vec4 color") + suffix + ";\n";
    return "";
}

std::string baseColour (int mode, const char* suffix)
{
    if (mode == alphaColour)
        return std::string ("vec4(color.rgb, color.a * alpha") + suffix + ")";
    if (mode == rgbaColour)
        return std::string ("color") + suffix;
    return "color";
}
} // namespace

const char* colourModeName (int mode)
{
    static const char* names[] = {"Uniform", "Alpha", "RGBA"};
    return mode >= 0 && mode < 3 ? names[mode] : "";
}

const char* shapeName (int shape)
{
    static const char* names[] = {"Circle", "GradientCircle", "Line", "Point", "Rect"};
    return shape >= 0 && shape < 5 ? names[shape] : "";
}

const char* styleName (int style)
{
    return style == stroked ? "Stroked" : "Filled";
}

std::string primitiveVertex (int mode)
{
    return std::string (header) +
           "in vec2 position;\nuniform vec2 viewportSize;\nuniform vec4 drawRegion;\n" +
           colourDeclarationsOut (mode) + "void main()\n{\n" + colourPassOut (mode) +
           "    gl_Position = vec4(((position + drawRegion.xy) / viewportSize) * 2.0 - 1.0, 1.0, 1.0);\n}\n";
}

std::string primitiveFragment (int mode)
{
    std::string s = std::string (header) + "uniform vec4 color;\nout vec4 fragColor;\n";
    if (mode == alphaColour)
        s += "in float alphaV;\nvoid main() { fragColor = vec4(color.xyz, color.a * alphaV); }\n";
    else if (mode == rgbaColour)
        s += "in vec4 colorV;\nvoid main() { fragColor = colorV; }\n";
    else
        s += "void main() { fragColor = vec4(color.xyz, color.a); }\n";
    return s;
}

std::string shapeVertex (int shape, int mode)
{
    std::string s = std::string (header) +
                    "in vec2 position;\nuniform vec2 viewportSize;\nuniform vec4 drawRegion;\n" +
                    colourDeclarationsOut (mode);
    if (shape == circle || shape == gradientCircle)
        s += "in float radius;\nout float radiusGeom;\n";
    if (shape == rect)
        s += "in vec2 size;\nout vec2 sizeGeom;\n";
    s += "out vec2 absoluteGeom;\nvoid main()\n{\n" + colourPassOut (mode);
    if (shape == circle || shape == gradientCircle)
        s += "    radiusGeom = radius;\n";
    if (shape == rect)
        s += "    sizeGeom = size;\n";
    // The alpha variant carries its alpha in depth, so the fragment can read it back
    // without another varying through the expansion stage.
    const std::string z = (mode == alphaColour && shape == circle) ? "alpha" : "1.0";
    s += "    absoluteGeom = position + drawRegion.xy;\n"
         "    gl_Position = vec4((absoluteGeom / viewportSize) * 2.0 - 1.0, " +
         z + ", 1.0);\n}\n";
    return s;
}

std::string shapeGeometry (int shape, int mode)
{
    std::string s = header;
    const bool isLine = shape == line;
    s += isLine ? "layout(lines) in;\n" : "layout(points) in;\n";
    s += "layout(triangle_strip, max_vertices = 4) out;\n"
         "uniform vec2 viewportSize;\nuniform float strokeWidth;\nuniform float pointRadius;\n"
         "in vec2 absoluteGeom[];\nout vec2 positionFrag;\nout vec2 sizeFrag;\nout vec2 "
         "absolutePositionFrag;\n"
         "out float radiusFrag;\n";
    if (mode == alphaColour)
        s += "in float alphaV[];\nout float alphaFrag;\n";
    if (mode == rgbaColour)
        s += "in vec4 colorV[];\nout vec4 colorFrag;\n";
    if (shape == circle || shape == gradientCircle)
        s += "in float radiusGeom[];\n";
    if (shape == rect)
        s += "in vec2 sizeGeom[];\n";
    const std::string pass = std::string (mode == alphaColour ? "    alphaFrag = alphaV[0];\n" : "") +
                             (mode == rgbaColour ? "    colorFrag = colorV[0];\n" : "");
    s += "void emitAt(vec4 base, vec2 offsetPoints)\n{\n    gl_Position = base + vec4(offsetPoints * (2.0 / "
         "viewportSize), 0.0, 0.0);\n" +
         pass + "    EmitVertex();\n}\n";
    s += "void main()\n{\n    radiusFrag = 0.0;\n    absolutePositionFrag = absoluteGeom[0];\n";
    if (isLine)
    {
        s += "    vec2 d = absoluteGeom[1] - absoluteGeom[0];\n"
             "    vec2 n = length(d) > 0.0 ? normalize(vec2(-d.y, d.x)) * strokeWidth * 0.5 : vec2(0.0);\n"
             "    positionFrag = absoluteGeom[0];\n    sizeFrag = vec2(0.0);\n"
             "    emitAt(gl_in[0].gl_Position, n);\n    emitAt(gl_in[0].gl_Position, -n);\n"
             "    emitAt(gl_in[1].gl_Position, n);\n    emitAt(gl_in[1].gl_Position, -n);\n";
    }
    else
    {
        if (shape == rect)
            s += "    vec2 size = sizeGeom[0];\n    vec4 base = gl_in[0].gl_Position;\n";
        else if (shape == point)
            s += "    vec2 size = vec2(pointRadius * 2.0);\n    radiusFrag = pointRadius;\n"
                 "    vec4 base = gl_in[0].gl_Position - vec4(vec2(pointRadius) * (2.0 / viewportSize), 0.0, "
                 "0.0);\n";
        else
            s += "    radiusFrag = radiusGeom[0];\n    vec2 size = vec2(radiusGeom[0] * 2.0 + 2.0);\n"
                 "    vec4 base = gl_in[0].gl_Position - vec4(vec2(radiusGeom[0] + 1.0) * (2.0 / "
                 "viewportSize), "
                 "0.0, 0.0);\n";
        s += "    positionFrag = absoluteGeom[0];\n    sizeFrag = size;\n"
             "    emitAt(base, vec2(0.0));\n    emitAt(base, vec2(size.x, 0.0));\n"
             "    emitAt(base, vec2(0.0, size.y));\n    emitAt(base, size);\n";
    }
    s += "    EndPrimitive();\n}\n";
    return s;
}

std::string shapeFragment (int shape, int style, int mode)
{
    std::string s =
        std::string (header) +
        "uniform vec4 color;\nuniform float scale;\nuniform float strokeWidth;\n"
        "uniform float gradientFraction;\n"
        "in vec2 positionFrag;\nin vec2 sizeFrag;\nin vec2 absolutePositionFrag;\nin float radiusFrag;\n" +
        fragmentColourIn (mode, "Frag") + "out vec4 fragColor;\nvoid main()\n{\n" +
        "    vec4 c = " + baseColour (mode, "Frag") + ";\n" +
        "    float depthAlpha = gl_FragCoord.z * 2.0 - 1.0;\n"
        "    float stepNorm = 0.5 / scale;\n";
    if (shape == circle || shape == point)
    {
        s += "    float dist = distance(gl_FragCoord.xy, absolutePositionFrag * scale);\n"
             "    float a = smoothstep(radiusFrag + stepNorm, radiusFrag - stepNorm, dist / scale);\n";
        if (style == stroked)
            s += "    a *= smoothstep(radiusFrag - strokeWidth - stepNorm, radiusFrag - strokeWidth + "
                 "stepNorm, "
                 "dist / scale);\n";
    }
    else if (shape == gradientCircle)
    {
        s += "    float dist = distance(gl_FragCoord.xy, absolutePositionFrag * scale);\n"
             "    float a = smoothstep(radiusFrag + stepNorm, max(radiusFrag * (1.0 - gradientFraction) - "
             "stepNorm, 0.0), dist / scale);\n";
    }
    else if (shape == rect)
    {
        s += "    vec2 dist = gl_FragCoord.xy / scale - positionFrag;\n"
             "    vec2 sizeStroke = sizeFrag - strokeWidth;\n"
             "    vec2 alpha = smoothstep(vec2(0.0), vec2(stepNorm), dist) * smoothstep(sizeFrag, sizeFrag - "
             "stepNorm, dist);\n"
             "    float a = alpha.x * alpha.y;\n";
        if (style == stroked)
            s += "    vec2 strokeAlpha = smoothstep(vec2(stepNorm + strokeWidth), vec2(strokeWidth), dist) + "
                 "smoothstep(sizeStroke - stepNorm, sizeStroke, dist);\n"
                 "    a *= max(strokeAlpha.x, strokeAlpha.y);\n";
    }
    else
    {
        s += "    float a = 1.0;\n";
    }
    s += "    fragColor = vec4(c.rgb, c.a * a * depthAlpha);\n}\n";
    return s;
}

std::string textureVertex()
{
    return std::string (header) +
           "in vec2 position;\nout vec2 uv;\n"
           "void main()\n{\n    uv = position * 0.5 + 0.5;\n    gl_Position = vec4(position, 0.0, 1.0);\n}\n";
}

std::string textureFragment()
{
    return std::string (header) + "uniform sampler2D imageTexture;\nin vec2 uv;\nout vec4 fragColor;\n"
                                  "void main() { fragColor = texture(imageTexture, vec2(uv.x, uv.y)); }\n";
}

std::string blurFragment()
{
    return std::string (header) +
           "uniform sampler2D imageTexture;\nin vec2 uv;\nout vec4 fragColor;\n"
           "float normpdf(in float x, in float sigma)\n"
           "{\n    return 0.39894 * exp(-0.5 * x * x / (sigma * sigma)) / sigma;\n}\n"
           "void main()\n{\n"
           "    const int mSize = 15;\n"
           "    const int kSize = (mSize - 1) / 2;\n"
           "    const float sigma = 15.0;\n"
           "    float kernel[mSize];\n"
           "    float Z = 0.0;\n"
           "    for (int j = 0; j <= kSize; ++j)\n"
           "        kernel[kSize + j] = kernel[kSize - j] = normpdf(float(j), sigma);\n"
           "    for (int j = 0; j < mSize; ++j)\n"
           "        Z += kernel[j];\n"
           "    vec2 texel = 1.0 / vec2(textureSize(imageTexture, 0));\n"
           "    vec4 sum = vec4(0.0);\n"
           "    for (int i = -kSize; i <= kSize; ++i)\n"
           "        for (int j = -kSize; j <= kSize; ++j)\n"
           "            sum += kernel[kSize + j] * kernel[kSize + i]\n"
           "                   * texture(imageTexture, uv + vec2(float(i), float(j)) * texel);\n"
           "    fragColor = sum / (Z * Z);\n"
           "}\n";
}

std::string mixFragment()
{
    return std::string (header) +
           "uniform sampler2D imageTexture0;\nuniform sampler2D imageTexture1;\nin vec2 uv;\n"
           "out vec4 fragColor;\n"
           "void main()\n{\n"
           "    vec4 t0 = texture(imageTexture0, uv);\n"
           "    vec4 t1 = texture(imageTexture1, uv);\n"
           "    fragColor = mix(t0, t1, t1.a);\n"
           "}\n";
}
} // namespace TRQShaderSources

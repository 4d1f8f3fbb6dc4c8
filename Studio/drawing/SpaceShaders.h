#pragma once

namespace ka::studio {

// GLSL of the scene. Light is reckoned in linear colours; pictures and the result are sRGB.

/// Stands before both mesh shaders, with HAS_NORMAL, HAS_COLOR and HAS_PICTURE defined as the mesh has them.
constexpr const char* MeshVertexShader = R"(
in vec3 vertexPosition;
#ifdef HAS_NORMAL
in vec3 cornerNormal;
out vec3 normal;
#endif
#ifdef HAS_COLOR
in vec4 cornerColor;
out vec4 painted;
#endif
#ifdef HAS_PICTURE
in vec2 cornerPlace;
out vec2 place;
#endif
in float cornerTint;
out float tint;
out vec3 inWorld;
uniform mat4 viewProjectionMatrix;

void main() {
    inWorld = vertexPosition;
    tint = cornerTint;
    gl_Position = viewProjectionMatrix * vec4(vertexPosition, 1.0);
#ifdef HAS_NORMAL
    normal = cornerNormal;
#endif
#ifdef HAS_COLOR
    painted = cornerColor;
#endif
#ifdef HAS_PICTURE
    place = cornerPlace;
#endif
}
)";

constexpr const char* MeshFragmentShader = R"(
#ifdef HAS_NORMAL
in vec3 normal;
#endif
#ifdef HAS_COLOR
in vec4 painted;
#endif
#ifdef HAS_PICTURE
in vec2 place;
uniform sampler2D picture;
#endif
in float tint;
in vec3 inWorld;
out vec4 result;
uniform vec3 eyePosition;
uniform vec4 color;
uniform vec3 glow;
uniform int lightCount;
uniform vec4 lightPlaces[8];     // w: 0 directional, 1 point, 2 spot
uniform vec4 lightDirections[8]; // w: cosine of the cone's half angle
uniform vec3 lightColors[8];
uniform vec3 lightFades[8];

vec3 lightAt(int i, vec3 facing) {
    float kind = lightPlaces[i].w;
    vec3 towards = kind < 0.5 ? -lightDirections[i].xyz : lightPlaces[i].xyz - inWorld;
    float far = length(towards);
    towards /= max(far, 1e-6);
    float strength = max(dot(facing, towards), 0.0);
    if (kind > 0.5)
        strength /= max(lightFades[i].x + lightFades[i].y * far + lightFades[i].z * far * far, 1e-4);
    if (kind > 1.5 && dot(-towards, lightDirections[i].xyz) < lightDirections[i].w)
        strength = 0.0;
    return lightColors[i] * strength;
}

void main() {
    vec3 towardsEye = eyePosition - inWorld;
#ifdef HAS_NORMAL
    vec3 facing = dot(normal, normal) > 0.0 ? normalize(normal) : normalize(towardsEye);
#else
    vec3 facing = normalize(cross(dFdx(inWorld), dFdy(inWorld)));
#endif
    if (dot(facing, towardsEye) < 0.0)
        facing = -facing; // the inside of a surface is lit as its outside
    vec4 own = color;
#ifdef HAS_COLOR
    own *= painted;
#endif
#ifdef HAS_PICTURE
    vec4 seen = texture(picture, place);
    if (seen.a * own.a < 0.05)
        discard;
    own *= vec4(pow(seen.rgb, vec3(2.2)), seen.a);
#endif
    // A little light from everywhere, more from above, so that nothing is ever black.
    vec3 light = vec3(0.16 + 0.06 * facing.y);
    for (int i = 0; i < lightCount; ++i)
        light += lightAt(i, facing);
    vec3 lit = own.rgb * min(light, vec3(1.6)) + glow;
    lit = mix(lit, vec3(1.0, 0.55, 0.05), 0.35 * tint);
    result = vec4(pow(clamp(lit, 0.0, 1.0), vec3(1.0 / 2.2)), own.a);
}
)";

/// One bone an instance: a double pyramid from one joint to the next, or a small ball at a joint.
constexpr const char* BoneVertexShader = R"(#version 150
in vec4 vertexPosition; // across, along, across; w: along where it is a joint
in vec3 from;
in vec3 to;
in vec2 look; // place in the colours, opacity
out vec3 inWorld;
flat out vec4 own;
uniform mat4 viewProjectionMatrix;
uniform vec3 eyePosition;
uniform float pixel; // what a pixel covers at distance 1
uniform vec3 colors[5];

void main() {
    vec3 way = to - from;
    float size = length(way);
    float unit = pixel * distance(eyePosition, from);
    if (size < 1e-7) {
        inWorld = from + vec3(vertexPosition.x, vertexPosition.w, vertexPosition.z) * unit * (look.x == 3.0 ? 5.0 : 3.0);
    } else {
        vec3 along = way / size;
        vec3 side = normalize(cross(along, abs(along.y) < 0.9 ? vec3(0, 1, 0) : vec3(1, 0, 0)));
        vec3 other = cross(along, side);
        float wide = min(size * 0.12, unit * 9.0);
        inWorld = from + way * vertexPosition.y + (side * vertexPosition.x + other * vertexPosition.z) * wide;
    }
    own = vec4(colors[int(look.x)], look.y);
    gl_Position = viewProjectionMatrix * vec4(inWorld, 1.0);
}
)";

constexpr const char* BoneFragmentShader = R"(#version 150
in vec3 inWorld;
flat in vec4 own;
out vec4 result;
uniform vec3 eyePosition;

void main() {
    vec3 facing = normalize(cross(dFdx(inWorld), dFdy(inWorld)));
    float light = 0.45 + 0.55 * abs(dot(facing, normalize(eyePosition - inWorld)));
    result = vec4(own.rgb * light, own.a);
}
)";

} // namespace ka::studio

// Throughput of the .isl reader: a typical 2D shader, and a large generated file of many
// variants and declarations.

#include <benchmark/benchmark.h>

#include <string>
#include <string_view>

#include "engine/renderer/shader/shader_parser.h"

namespace {

constexpr std::string_view kTexturedShader = R"(// A textured quad in 2D.
in {
    tex2D u_texture [hint: albedo, wrap: repeat, filter: trilinear];
    vec4 u_color = vec4(1, 1, 1, 1) [hint: color];
}

surface { blend: alpha, z-write: false, double-sided: true }

variant {
    head { require-extension: GL_OES_standard_derivatives; }
    vertex {
        out { vec2 v_uv; }
        source %{
            v_uv = vUV0;
            %out.position% = _mtx_mul(vModelViewProjectionMatrix, vec4(vPosition, 1.0));
        %}
    }
    pixel {
        in { vec2 v_uv; }
        source %{
            %out.color% = texture2D(u_texture, v_uv) * u_color;
        %}
    }
}
)";

std::string GenerateShader(std::size_t size)
{
    std::string text;
    for (int block = 0; text.size() < size; ++block) {
        const std::string n = std::to_string(block);
        text += "in {\n    float u_roughness" + n + " = 0.5 [hint: roughness];\n    vec4 u_tint" + n +
                " = vec4(1, 0.5, 0.25, 1) [hint: color];\n    tex2D u_map" + n +
                " = \"@core/textures/map.png\" [wrap: repeat, filter: anisotropic];\n    mat4 u_bones" + n +
                "[48];\n}\n";
        text += "variant {\n    head { require-extension: GL_EXT_variant_" + n +
                "; }\n    vertex {\n        out { vec2 v_uv; vec3 v_normal; }\n        source %{\n"
                "            v_uv = vUV0;\n            v_normal = _mtx_mul(vNormalMatrix, vNormal);\n"
                "            %out.position% = _mtx_mul(vModelViewProjectionMatrix, vec4(vPosition, 1.0));\n"
                "        %}\n    }\n    pixel {\n        in { vec2 v_uv; vec3 v_normal; }\n        global %{\n"
                "            float lambert(vec3 n, vec3 l) { return max(dot(n, l), 0.0); }\n        %}\n"
                "        source %{\n            // Diffuse term only.\n"
                "            %out.color% = texture2D(u_map" +
                n + ", v_uv) * u_tint" + n + " * lambert(v_normal, vLightViewDirection);\n        %}\n    }\n}\n";
    }
    return text;
}

void Parse(benchmark::State& state, std::string_view source)
{
    for (auto _ : state) {
        kesta::Shader shader;
        if (!kesta::ParseShader(shader, source)) {
            state.SkipWithError("the benchmark's shader does not parse");
            break;
        }
        benchmark::DoNotOptimize(shader.variants.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(source.size()));
}

void BM_ParseTexturedShader(benchmark::State& state) { Parse(state, kTexturedShader); }
BENCHMARK(BM_ParseTexturedShader);

void BM_ParseGenerated256KiB(benchmark::State& state)
{
    static const std::string source = GenerateShader(256 * 1024);
    Parse(state, source);
}
BENCHMARK(BM_ParseGenerated256KiB);

}  // namespace

BENCHMARK_MAIN();

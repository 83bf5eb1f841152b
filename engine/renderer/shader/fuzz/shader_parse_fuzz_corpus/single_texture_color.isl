// Textured geometry tinted by its vertex colour: text, sprites, debug overlays.
in {
    tex2D u_tex [wrap: clamp, filter: linear];
}

variant {
    vertex {
        out {
            vec2 v_uv;
            vec4 v_color;
        }
        source %{
            v_uv = vUV0;
            v_color = vColor0;
            %out.position% = _mtx_mul(vModelViewProjectionMatrix, vec4(vPosition, 1.0));
        %}
    }
    pixel {
        in {
            vec2 v_uv;
            vec4 v_color;
        }
        source %{
            %out.color% = texture(u_tex, v_uv) * v_color;
        %}
    }
}

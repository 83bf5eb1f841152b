// Textured 3D geometry with a constant tint.
in {
    tex2D u_tex [wrap: repeat, filter: trilinear];
    vec4 u_color = vec4(1.0, 1.0, 1.0, 1.0) [hint: color];
}

variant {
    vertex {
        out {
            vec2 v_uv;
        }
        source %{
            v_uv = vUV0;
            %out.position% = _mtx_mul(vModelViewProjectionMatrix, vec4(vPosition, 1.0));
        %}
    }
    pixel {
        in {
            vec2 v_uv;
        }
        source %{
            %out.color% = texture(u_tex, v_uv) * u_color;
        %}
    }
}

// A textured quad in 2D.
in {
    tex2D u_texture [hint: albedo, wrap: repeat, filter: trilinear];
    vec4 u_color = vec4(1, 1, 1, 1) [hint: color];
    mat4 u_transform[2];
}

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
        global %{
            #include "common.i"
        %}
        source %{
            %out.color% = tint(texture2D(u_texture, v_uv));
        %}
    }
}

// Geometry in one constant colour: picking, outlines, stencil-like passes.
in {
    vec4 u_color = vec4(1.0, 1.0, 1.0, 1.0) [hint: color];
}

variant {
    vertex {
        source %{
            %out.position% = _mtx_mul(vModelViewProjectionMatrix, vec4(vPosition, 1.0));
        %}
    }
    pixel {
        source %{
            %out.color% = u_color;
        %}
    }
}

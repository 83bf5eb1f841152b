surface {
    blend: alpha, z-write: false, z-test: 1, alpha-test: true, alpha-threshold: 0.25,
    double-sided: True, cast-shadow: FALSE, receive-shadow: 0, no-light: 1,
    force-depth-func-always: TRUE, skinned: true, terrain: 0
}

in {
    float roughness = 0.5 [hint: roughness];
    vec3 emissive = 0, 0, 0;
    int layers = 2;
    uint32_t mask = 7;
    mat3 rotation = mat3(1, 0, 0, 0, 1, 0, 0, 0, 1);
    texCube environment = "@core/textures/sky.dds" [wrap-u: mirror, wrap-v: repeat, min-filter: nearest, max-filter: anisotropic];
    texShadow shadow;
}

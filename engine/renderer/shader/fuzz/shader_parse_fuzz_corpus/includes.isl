variant {
    vertex {
        global %{
#include "nested.i"
        %}
        source %{ %include("common.i") %include("self.i") %include "common.i" %}
    }
    pixel {
        out { vec4 color; }
        global %{ %include( "nested.i" ) %}
        source %{
#include "hash_self.i"
#include "missing.i"
        %}
    }
}

in { float a[4; vec2 b = vec2(1, 2 [hint: x; sampler2D s; }
variant { head { unknown: 1 } vertex { in { foo f; } out { bar b; } } }
surface [ broken { blend: additive }
source %{ never closed

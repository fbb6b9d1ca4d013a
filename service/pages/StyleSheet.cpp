#include "service/Visit.h"

QByteArray styleSheet()
{
    return R"css(:root {
    color-scheme: dark light;
    --bg: #0c0d0f; --panel: #15161a; --card: #1c1e22; --control: #25272c; --hover: #2e3137;
    --line: #24262b; --line2: #34373e; --text: #f2f3f5; --text2: #b8bcc5; --text3: #989ea9;
    --accent: #4765f0; --accent-hover: #3f5bdd; --accent-text: #9aaeff; --accent-line: #5b78ff;
    --ok: #63ce93; --warn: #e9b65c; --err: #ff918a;
}
@media (prefers-color-scheme: light) {
    :root {
        --bg: #e3e4e8; --panel: #fafafb; --card: #ffffff; --control: #ecedf1; --hover: #e1e3e8;
        --line: #e1e3e8; --line2: #cdd0d8; --text: #16181c; --text2: #454a54; --text3: #5c626d;
        --accent: #3b58e6; --accent-hover: #3049cc; --accent-text: #2c4ad0;
        --accent-line: #4765f0; --ok: #17703f; --warn: #7e5200; --err: #b3261e;
    }
}
* { box-sizing: border-box; }
body {
    margin: 0; background: var(--bg); color: var(--text);
    font: 15px/22px Inter, system-ui, sans-serif;
}
header, main { max-width: 560px; margin: 0 auto; }
header {
    display: flex; justify-content: space-between; align-items: baseline;
    padding: 24px 32px 12px; color: var(--text3); font-size: 13px;
}
.marca { color: var(--text); font-weight: 600; font-size: 15px; text-decoration: none; }
main {
    background: var(--panel); border: 1px solid var(--line); border-radius: 16px;
    padding: 32px; margin-bottom: 48px;
}
h1 { font-size: 22px; line-height: 30px; font-weight: 600; letter-spacing: -0.3px; margin: 0 0 16px; }
h2 { font-size: 15px; font-weight: 600; margin: 32px 0 8px; }
p { margin: 0 0 16px; color: var(--text2); overflow-wrap: anywhere; }
p:last-child { margin-bottom: 0; }
a { color: var(--accent-text); }
.nota { font-size: 13px; line-height: 18px; color: var(--text3); }
.aviso {
    display: inline-block; border: 1px solid var(--line2); border-radius: 6px; padding: 2px 10px;
    font-size: 13px; color: var(--warn); background: var(--card);
}
.bien { color: var(--ok); }
.mal { color: var(--err); }
.cifra { font-size: 28px; line-height: 36px; color: var(--text); margin-bottom: 4px; }
label { display: block; font-size: 13px; color: var(--text2); margin-bottom: 4px; }
input:not([type=hidden]) {
    width: 100%; min-height: 40px; padding: 8px 12px; margin-bottom: 16px; font: inherit;
    color: var(--text); background: var(--control); border: 1px solid var(--line2);
    border-radius: 8px;
}
.acciones { display: flex; flex-wrap: wrap; gap: 8px; margin-top: 8px; }
button, .boton {
    display: inline-block; min-height: 44px; padding: 10px 20px; font: inherit; font-weight: 600;
    line-height: 22px; color: var(--text); background: var(--control); border: 0;
    border-radius: 9px; text-decoration: none; cursor: pointer;
}
button:hover, .boton:hover { background: var(--hover); }
.principal { background: var(--accent); color: #ffffff; }
.principal:hover { background: var(--accent-hover); }
:focus-visible { outline: 2px solid var(--accent-line); outline-offset: 2px; }
pre {
    margin: 0 0 12px; padding: 12px; border-radius: 8px; background: var(--card);
    border: 1px solid var(--line); color: var(--text2); white-space: pre-wrap;
    overflow-wrap: anywhere; font: 13px/20px ui-monospace, monospace;
}
.copia { user-select: all; }
.texto { font: inherit; unicode-bidi: plaintext; }
figure { margin: 0; }
figcaption { color: var(--text3); font-size: 13px; margin: -6px 0 12px; }
.imagenes { display: grid; grid-template-columns: repeat(auto-fill, minmax(150px, 1fr)); gap: 0 12px; align-items: start; }
dl { display: grid; grid-template-columns: max-content 1fr; gap: 6px 24px; margin: 0 0 16px; }
dt { color: var(--text3); }
dd { margin: 0; overflow-wrap: anywhere; }
table { width: 100%; border-collapse: collapse; margin-bottom: 16px; }
th, td { text-align: left; padding: 10px 0; border-bottom: 1px solid var(--line); font-weight: 400; }
th { color: var(--text3); font-size: 13px; }
th:last-child, td:last-child { text-align: right; font-variant-numeric: tabular-nums; }
ul { list-style: none; margin: 0; padding: 0; }
li { border-bottom: 1px solid var(--line); padding: 12px 0; }
li:last-child { border-bottom: 0; }
img { display: block; width: 100%; height: auto; border-radius: 6px; margin-bottom: 12px; }
@media (max-width: 600px) { main { border-radius: 0; border-width: 1px 0; padding: 24px; } header { padding: 16px 24px; } }
@media print {
    :root { --text: #000; --text2: #000; --text3: #444; --line: #bbb; --panel: #fff; --bg: #fff; --card: #fff; --warn: #000; }
    main { border: 0; padding: 0; }
    header { padding: 0 0 24px; }
    .solopantalla { display: none; }
}
)css";
}

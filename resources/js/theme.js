.pragma library

// Colours and measures that the documents of the editor share.

var canvas = "#000000";
var panel = "#1e1e1e";
var control = "#323232";
var controlPressed = "#464646";
var outline = "#505050";
var text = "#ffffff";
var quietText = "#a0a0a0";
var accent = "#0096ff"; // only for selected and pressable elements
var chosen = "#0b3a5e"; // ground of a chosen element
var selection = "#b3dffe";
var selectedText = "#000000"; // on the ground of a selection
var selectionOutline = "#004c99";
var warning = "#ffb000"; // something is not as the operator has set it
var shadow = "#c0000000"; // behind white on a light ground
var disabledOpacity = 0.35;

var spacing = 8;
var radius = 6;
var focusRingWidth = 2;
var touchTarget = 44;
var fontSize = 14;
var titleSize = 18;

var toolTipDelay = 600; // ms
var returnMarkTime = 600; // ms

<?xml version='1.0' encoding='utf-8'?>
<TS version="2.1" language="zh_CN">
<context>
    <name>BackgroundRun</name>
    <message>
        <source>Processing</source>
        <translation>处理中</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Please wait</source>
        <translation>请稍候</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Information</source>
        <translation>提示</translation>
    </message>
</context>
<context>
    <name>Widget_Contourize</name>
    <message>
        <source>Accuracy :</source>
        <translation>精度 :</translation>
    </message>
    <message>
        <source>     Clean Holes</source>
        <translation>     清除孔洞</translation>
    </message>
    <message>
        <source>Max Size :</source>
        <translation>最大尺寸 :</translation>
    </message>
    <message>
        <source>Separate to Islands :</source>
        <translation>分离为孤岛 :</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>是</translation>
    </message>
    <message>
        <source>No</source>
        <translation>否</translation>
    </message>
    <message>
        <source>Mode :</source>
        <translation>模式 :</translation>
    </message>
    <message>
        <source>X or Y</source>
        <translation>X 或 Y</translation>
    </message>
    <message>
        <source>X and Y</source>
        <translation>X 和 Y</translation>
    </message>
    <message>
        <source>Area</source>
        <translation>面积</translation>
    </message>
    <message>
        <source>Ok</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>应用</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>Contourize</source>
        <translation>轮廓化</translation>
    </message>
    <message>
        <source>Accuracy           :</source>
        <translation>精度 :</translation>
    </message>
    <message>
        <source>Max Size          :</source>
        <translation>最大尺寸 :</translation>
    </message>
    <message>
        <source>Mode          :</source>
        <translation>模式 :</translation>
    </message>
</context>
</TS>